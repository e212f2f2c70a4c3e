#pragma once

#include "materials/material_export.h"
#include "materials/material_test_helpers.h"

#include "scene/scene_node_material.h"
#include "scene/scene_node_root.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// Material export of the fixture's materials into a root of its own, with
// the driver's empty-link and default materials standing in as UIDs 1 and 2.
class MaterialExportTest : public MaterialTest
{
protected:
	void SetUp() override
	{
		MaterialTest::SetUp();
		exportTo("scene.vls", &temp_files);
	}

	// A new root, and the settings of an export to scene: with a list of
	// temporary files the textures go to the system's temporary folder,
	// else to a folder beside the scene.
	void exportTo(const std::string& scene, std::vector<Filename>* temporary)
	{
		settings = std::make_unique<ExportSettings>(doc, Filename(String(scene)), temporary, 0, 64, 64, 0, 0, 0, 0);
		settings->null_material = Velorn::UID(1);
		settings->default_material = Velorn::UID(2);
		root = new Velorn::SceneNodeRoot();
	}

	Velorn::UID exportMaterial(BaseMaterial* mat) { return exportLinkedMaterial(mat, *root, *settings); }

	// The node of root with uid, as its class.
	template <class T>
	const T& node(Velorn::UID uid) const
	{
		for(const Velorn::Reference<Velorn::SceneNode>& child : root->getChildren())
			if(child->uid == uid)
				if(const T* found = dynamic_cast<const T*>(child.getPointer()))
					return *found;
		throw std::runtime_error("no such node");
	}

	template <class T>
	const T& materialOf(Velorn::UID uid) const
	{
		const T* material = dynamic_cast<const T*>(node<Velorn::SceneNodeMaterial>(uid).material.getPointer());
		if(!material)
			throw std::runtime_error("the node holds another class");
		return *material;
	}

	std::vector<Filename> temp_files;
	std::unique_ptr<ExportSettings> settings;
	Velorn::Reference<Velorn::SceneNodeRoot> root;
};
