// The export of a document whose objects wear the plug-in's materials: 1,000
// materials of five kinds, each with one of the plug-in's noise or gradient
// shaders in a channel, over 1,000 small polygon objects, each with a
// texture tag linking its own material. The same document is exported with
// the material export that the material plug-in installs, and with the
// hooks cleared, where every object takes the driver's default material:
// the difference is what the materials cost. The document is built in
// memory; the scene is neither finalised nor written, as in the material
// export tests. Files, if any, go to /tmp and are removed at the end.

#include "run_benchmarks.h"
#include "waved_grid.h"

#include "c4d/base_document.h"
#include "c4d/base_material.h"
#include "c4d/base_shader.h"
#include "c4d/description.h"
#include "c4d/messages.h"
#include "c4d/plugin_registry.h"
#include "c4d/plugin_test_helpers.h"
#include "c4d/polygon_object.h"
#include "c4d/resources.h"
#include "c4d/texture_tag.h"
#include "c4d/variable_tags.h"
#include "export/export_settings.h"
#include "export/material_hooks.h"
#include "export/scene_exporter.h"
#include "host/camera_tag.h"
#include "host/plugin_ids.h"
#include "materials/material_export.h"
#include "materials/material_ids.h"
#include "materials/material_plugin.h"
#include "shaders/shader_ids.h"
#include "shaders/shader_plugins.h"

#include "scene/scene_node_material.h"
#include "scene/scene_node_root.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace
{

const char* const DIR = "/tmp/velorn_material_bench";
const int32_t OBJECTS = 1000;

// The plug-ins a document of the plug-in's materials needs, registered as
// the material and shader tests register them, with the module's resources
// read from the source tree. Registering the material installs the material
// export.
bool registerPlugins()
{
	PluginRegistry::get().clear();
	if(!HostResources::get().init(Filename(String(VELORN_SOURCE_DIR "/src/host"))))
	{
		std::fprintf(stderr, "resources: %s\n", HostResources::get().error().GetStdString().c_str());
		return false;
	}
	if(!(RegisterVelornMaterial() && RegisterVslShader() && RegisterVslNoise() && RegisterVslBlend() &&
		   RegisterVslGradient() && RegisterVslNormal() && RegisterCameraTag()))
		return false;
	registerPlainPlugins(PluginKind::VideoPost, {ID_VIDEO_POST});
	return GetMaterialExportHooks() != nullptr;
}

// A noise (even k) or gradient (odd k) shader owned by mat, its parameters
// varied by k so that no two shader texts are alike.
BaseShader* linkShader(BaseMaterial* mat, int32_t link, int32_t k)
{
	BaseShader* sh = BaseShader::Alloc(k % 2 == 0 ? ID_VSL_NOISE : ID_VSL_GRADIENT);
	BaseContainer& data = *sh->GetDataInstance();
	if(k % 2 == 0)
	{
		data.SetInt32(VSLNOISE_KIND, k % 4 == 0 ? VSLNOISE_KIND_PLAIN : VSLNOISE_KIND_FRACTAL);
		data.SetFloat(VSLNOISE_SCALE, 1.0 + 0.01 * k);
	}
	else
		data.SetFloat(VSLGRADIENT_GAIN, 1.0 + 0.01 * k);
	mat->InsertShader(sh);
	mat->GetDataInstance()->SetLink(link, sh);
	return sh;
}

// Material k of the document, after the k materials before it (last is the
// one before it): by k mod 5 a diffuse material with a shader in albedo, a
// Phong material with shaders in albedo and exponent, a specular material
// with its medium and a shader in the absorption layer, a blend of the two
// materials three and two before it with a shader as the blend factor, and a
// coating over the material four before it with a shader in roughness.
BaseMaterial* makeMaterial(BaseDocument* doc, BaseMaterial* last, int32_t k, std::vector<BaseMaterial*>& made)
{
	static const int32_t kinds[] = {
		MAT_TYPE_DIFFUSE, MAT_TYPE_PHONG, MAT_TYPE_SPECULAR, MAT_TYPE_BLEND, MAT_TYPE_COATING};
	const int32_t kind = kinds[k % 5];
	BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	mat->SetName(String("Material ") + String::IntToString(k));
	doc->InsertMaterial(mat, last);
	if(kind != MAT_TYPE_DIFFUSE)
	{
		mat->SetParameter(DescID(MAT_TYPE), GeData(kind));
		mat->Message(MSG_DESCRIPTION_VALIDATE);
	}
	BaseContainer& data = *mat->GetDataInstance();
	data.SetVector(MAT_ALBEDO_COLOUR, Vector(0.2 + 0.0006 * k, 0.5, 0.8 - 0.0006 * k));
	switch(kind)
	{
	case MAT_TYPE_DIFFUSE:
		linkShader(mat, MAT_ALBEDO_LINK, k);
		break;
	case MAT_TYPE_PHONG:
		linkShader(mat, MAT_ALBEDO_LINK, k);
		linkShader(mat, MAT_EXPONENT_LINK, k + 1);
		break;
	case MAT_TYPE_SPECULAR:
		data.SetBool(MAT_USE_MEDIUM, true);
		data.SetFloat(MAT_MEDIUM_IOR, 1.3 + 0.0002 * k);
		linkShader(mat, MAT_ABSORPTION_LAYER_LINK, k);
		break;
	case MAT_TYPE_BLEND:
		data.SetLink(MAT_BLEND_A, made[k - 3]);
		data.SetLink(MAT_BLEND_B, made[k - 2]);
		linkShader(mat, MAT_ALPHA_LINK, k);
		break;
	case MAT_TYPE_COATING:
		data.SetLink(MAT_COAT_SUBSTRATE, made[k - 4]);
		linkShader(mat, MAT_CH_ROUGHNESS + MAT_CH_LINK, k);
		break;
	}
	made.push_back(mat);
	return mat;
}

// A waved grid of cells x cells quads with a texture tag linking mat, 40 to
// a row.
PolygonObject* makeObject(int32_t k, int32_t cells, BaseMaterial* mat)
{
	PolygonObject* op = makeWavedGrid(
		k, cells, cells, 0.7, 0.5, Vector((k % 40) * 1.0, 0, (k / 40) * 1.0), String("Object ") + String::IntToString(k));
	TextureTag* texture = TextureTag::Alloc();
	texture->SetMaterial(mat);
	op->InsertTag(texture);
	return op;
}

// The document of objects of cells x cells quads, built once: a camera
// with the plug-in's camera tag, then the objects in the order of their
// materials.
BaseDocument* document(int32_t cells)
{
	static const bool registered = registerPlugins();
	if(!registered)
	{
		std::fprintf(stderr, "the plug-ins could not be registered\n");
		std::exit(1);
	}
	static std::map<int32_t, BaseDocument*> documents;
	BaseDocument*& doc = documents[cells];
	if(!doc)
	{
		BaseDocument* d = BaseDocument::Alloc();
		BaseObject* camera = BaseObject::Alloc(Ocamera);
		camera->SetName(String("Camera"));
		camera->MakeTag(ID_CAMERA_TAG);
		d->InsertObject(camera, nullptr, nullptr);
		d->SetActiveCamera(camera);
		std::vector<BaseMaterial*> materials;
		BaseMaterial* last = nullptr;
		for(int32_t k = 0; k < OBJECTS; ++k)
			last = makeMaterial(d, last, k, materials);
		BaseObject* pred = camera;
		for(int32_t k = 0; k < OBJECTS; ++k)
		{
			PolygonObject* op = makeObject(k, cells, materials[k]);
			d->InsertObject(op, nullptr, pred);
			pred = op;
		}
		d->ExecutePasses(nullptr, true, true, true, 0);
		doc = d;
	}
	return doc;
}

// One export of the document as the material export tests run it: the
// root as the driver leaves it, neither finalised nor written.
Velorn::Reference<Velorn::SceneNodeRoot> exportOnce(int32_t cells)
{
	std::vector<Filename> temp_files;
	ExportSettings settings(document(cells), Filename((std::string(DIR) + "/bench.vls").c_str()), &temp_files, 0, 320,
		240, 0, 0, 0, 0);
	SceneExporter exporter(&settings);
	return exporter.exportScene();
}

int64_t materialNodes(const Velorn::SceneNodeRoot& root)
{
	int64_t count = 0;
	for(const Velorn::Reference<Velorn::SceneNode>& child : root.getChildren())
		if(dynamic_cast<const Velorn::SceneNodeMaterial*>(child.getPointer()))
			++count;
	return count;
}

// Arg materials 1: with the material export installed; 0: with the hooks
// cleared. Arg cells: each object is a grid of cells x cells quads.
// Reports the nodes and material nodes of the last export's root.
void BM_ExportScene(benchmark::State& state)
{
	const bool materials = state.range(0) != 0;
	const int32_t cells = (int32_t)state.range(1);
	document(cells);
	if(materials)
		InstallMaterialExport();
	else
		SetMaterialExportHooks(nullptr);
	int64_t nodes = 0, material_nodes = 0;
	for(auto _ : state)
	{
		Velorn::Reference<Velorn::SceneNodeRoot> root = exportOnce(cells);
		if(root.isNull())
		{
			state.SkipWithError("the export gave no root");
			break;
		}
		state.PauseTiming();
		nodes = (int64_t)root->getChildren().size();
		material_nodes = materialNodes(*root);
		state.ResumeTiming();
	}
	InstallMaterialExport();
	state.SetItemsProcessed(state.iterations() * (int64_t)OBJECTS);
	state.counters["nodes"] = (double)nodes;
	state.counters["material_nodes"] = (double)material_nodes;
}

// Small objects (6 x 6 quads), where the materials weigh most, and objects
// of a size more usual in a scene (20 x 20 quads).
BENCHMARK(BM_ExportScene)
	->ArgNames({"materials", "cells"})
	->Args({1, 6})
	->Args({0, 6})
	->Args({1, 20})
	->Args({0, 20})
	->Unit(benchmark::kMillisecond)
	->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
	const int status = runBenchmarks(argc, argv);
	std::filesystem::remove_all(DIR);
	return status;
}
