#pragma once

#include "c4d/filename.h"
#include "scene/emission_overrides.h"
#include "scene/material.h"
#include "scene/scene_node_material.h"
#include "scene/uid.h"
#include "support/reference.h"

class BaseMaterial;
struct ExportSettings;

namespace Velorn
{
class SceneNodeRoot;
}

// The export stands below the material plug-in, so it reaches material
// export through these entries, which the plug-in's material registration
// fills when the module starts and empties when it goes. Without them every
// object takes the driver's default material and the environment background
// stays empty.
struct MaterialExportHooks
{
	// The UID of the material's node in root, exported now unless the run's
	// material map holds it already; invalid for nothing exported.
	Velorn::UID (*exportMaterial)(BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings) =
		nullptr;
	// The background's material (an emitting plug-in material in background
	// mode), or null for any other material.
	Velorn::Reference<Velorn::Material> (*exportBackgroundMaterial)(
		BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings) = nullptr;
	// The emission scale a material asks for, without a material UID; null
	// when it asks for none.
	Velorn::Reference<Velorn::EmissionScale> (*emissionScale)(const BaseMaterial& material) = nullptr;
	// The IES profile a material asks for, its file's path as seen from
	// export_dir, without a material UID; null when it asks for none.
	Velorn::Reference<Velorn::IESProfile> (*iesProfile)(const BaseMaterial& material, const Filename& export_dir) =
		nullptr;
};

// Null clears the hooks.
void SetMaterialExportHooks(const MaterialExportHooks* hooks);
// Null when no material export is installed.
const MaterialExportHooks* GetMaterialExportHooks();

// A measured light distribution from the file at path for the material's
// emission.
Velorn::Reference<Velorn::IESProfile> iesProfile(Velorn::UID material, const String& path);
