#pragma once

#include "export/export_settings.h"

#include "scene/emission_overrides.h"
#include "scene/material.h"
#include "scene/scene_node_root.h"
#include "scene/uid.h"

class BaseMaterial;

// Turns host materials into material and medium nodes of the export's root.
// Every function works on the run's settings: a null document stops them,
// material_map and medium_map keep what this run exported.

// The UID of material's node: from material_map when this run has exported
// it, else exported now. A material of the plug-in is exported as it is;
// any other is converted into a temporary material of the plug-in first,
// exported under its own name and freed. Invalid for nothing exported.
Velorn::UID exportLinkedMaterial(BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings);

// Builds a plug-in material under name: its node (and, with alpha on, the
// blend node around it) is added to root and entered in material_map, and
// the UID that objects refer to is returned.
Velorn::UID exportPluginMaterial(
	BaseMaterial* material, const String& name, Velorn::SceneNodeRoot& root, ExportSettings& settings);

// The background's material: a plug-in material built by the diffuse
// builder without albedo, bump, normal map, displacement and backface
// emission; null for any other material.
Velorn::Reference<Velorn::Material> exportBackgroundMaterial(
	BaseMaterial* material, Velorn::SceneNodeRoot& root, ExportSettings& settings);

// The emission scale a material of the plug-in asks for (its scale switch
// on), without a material UID; null otherwise.
Velorn::Reference<Velorn::EmissionScale> materialEmissionScale(const BaseMaterial& material);

// The IES profile a material of the plug-in asks for (its profile switch 1
// and a file named), the file's path as seen from export_dir, without a
// material UID; null otherwise.
Velorn::Reference<Velorn::IESProfile> materialIESProfile(const BaseMaterial& material, const Filename& export_dir);

// The UID of the medium node inside material (named name + "Med"), made
// once per run, or taken from the material that MAT_MEDIUM_SOURCE names.
Velorn::UID exportMedium(BaseMaterial* material, const String& name, Velorn::SceneNodeRoot& root,
	ExportSettings& settings);

// Makes the functions above the export's material export (called when the
// material plug-in registers); the hooks are cleared when this library goes.
void InstallMaterialExport();
