#pragma once

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/c4d_string.h"
#include "c4d/filename.h"

#include "scene/scene_node.h"
#include "scene/scene_node_material.h"
#include "support/reference.h"
#include "support/velorn_vector.h"

#include <set>
#include <string>
#include <vector>

// Reads the renderer's material files (.vlm, and .pvlm archives of one)
// into materials of the plug-in in a document. The mapping is the reverse
// of the material export; what has no parameter on the host is left out,
// and the spectra and constants that the host cannot hold are listed as
// warnings.
class MaterialImporter
{
public:
	explicit MaterialImporter(BaseDocument& document);

	// The whole import of a chosen file: an archive is unpacked into a new
	// folder of the plug-in's "materials" folder, the material file is read
	// and its material nodes imported in order, the host is told of the
	// change, and the warnings show in one dialog. Failures go to the
	// console.
	void importFile(const Filename& file);

	// Imports the material nodes among nodes, in order. directory is where
	// relative texture paths are looked up; the nodes are also where links
	// by UID are looked up.
	void importNodes(const Velorn::Vector<Velorn::Reference<Velorn::SceneNode>>& nodes, const std::string& directory);

	// A new plug-in material in the document from node, named as the node,
	// its links imported first. Null when nothing is left behind: a node
	// without a material, a name the document has already, a null
	// material.
	BaseMaterial* importMaterial(const Velorn::SceneNodeMaterial& node);

	// The warnings gathered since the last dialog.
	const std::vector<String>& warnings() const { return warning_list; }
	// The materials this importer created and left in the document.
	const std::vector<BaseMaterial*>& created() const { return created_materials; }
	// The folder the last archive was unpacked into; empty for a plain file.
	const std::string& unpackedFolder() const { return unpacked_folder; }

	// The dialog text of warnings: "Import warnings:", then for each a line
	// feed, "- " and the warning. Empty for no warnings.
	static String warningText(const std::vector<String>& warnings);

private:
	// Shows the warnings in one message dialog, if there are any, and
	// empties the list.
	void showWarnings();
	// The host material that a link to target stands for: the document's
	// material of that name, the node imported first when there is none.
	BaseMaterial* linkedMaterial(const Velorn::SceneNodeMaterial* target);
	// The material node of a link: the bound node, else the node of the
	// file with the stored UID.
	const Velorn::SceneNodeMaterial* findMaterialNode(
		const Velorn::Reference<Velorn::SceneNodeMaterial>& bound, Velorn::UID uid) const;
	const Velorn::SceneNode* findMediumNode(const Velorn::SceneNode* bound, Velorn::UID uid) const;
	void fill(BaseMaterial& host, const Velorn::Material& material);

	BaseDocument& document;
	std::vector<BaseMaterial*> created_materials;
	std::string directory;
	std::string unpacked_folder;
	std::vector<String> warning_list;
	Velorn::Vector<Velorn::Reference<Velorn::SceneNode>> file_nodes;
	// The nodes being imported, so that a cycle of links ends.
	std::set<const Velorn::SceneNodeMaterial*> in_progress;
};

// The materials folder of the plug-in, where archives are unpacked: the
// folder "materials" in the module's folder. Empty before the plug-in
// started.
std::string pluginMaterialsFolder();

// "Import .vlm": asks for a .vlm or .pvlm file and imports it into the
// document. Registered under its resource name, skipped when the resource
// has none.
bool RegisterImportMaterialCommand();
