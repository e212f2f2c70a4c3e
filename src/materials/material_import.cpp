#include "materials/material_import.h"

#include "c4d/console.h"
#include "c4d/description.h"
#include "c4d/dialog_script.h"
#include "c4d/events.h"
#include "c4d/host_clock.h"
#include "c4d/plugin_registry.h"
#include "host/plugin_globals.h"
#include "host/plugin_ids.h"
#include "host/registration.h"
#include "materials/material_archive.h"
#include "materials/material_ids.h"
#include "materials/material_import_fill.h"
#include "materials/material_rules.h"
#include "materials/nk_table.h"

#include "reader/scene_parser.h"
#include "reader/xml_doc.h"
#include "scene/materials_basic.h"
#include "scene/materials_composite.h"
#include "scene/materials_glass.h"
#include "scene/scene_node_medium.h"
#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform.h"

#include <new>

using Velorn::Reference;

namespace
{

enum
{
	ID_IMPORT_MATERIAL = 1022469,
	IMPORT_MATERIAL_NAME_STRING = 10014,
};

// How many links deep materials are imported ahead of their turn.
const size_t max_link_depth = 256;

String hostText(const Velorn::String& text)
{
	return String(text.str());
}

// The first material of the document with that name, of any type.
BaseMaterial* findMaterial(const BaseDocument& document, const String& name)
{
	for(BaseMaterial* mat = document.GetFirstMaterial(); mat; mat = mat->GetNext())
		if(mat->GetName() == name)
			return mat;
	return nullptr;
}

// MAT_TYPE of the scene material's class; 0 for a class the plug-in has no
// kind for.
int32_t hostKind(unsigned type)
{
	switch(type)
	{
	case Velorn::MaterialType::Diffuse: return MAT_TYPE_DIFFUSE;
	case Velorn::MaterialType::DiffuseTransmitter: return MAT_TYPE_DIFFUSE_TRANSMITTER;
	case Velorn::MaterialType::OrenNayar: return MAT_TYPE_OREN_NAYAR;
	case Velorn::MaterialType::Phong: return MAT_TYPE_PHONG;
	case Velorn::MaterialType::Specular: return MAT_TYPE_SPECULAR;
	case Velorn::MaterialType::GlossyTransparent: return MAT_TYPE_GLOSSY_TRANSPARENT;
	case Velorn::MaterialType::Blend: return MAT_TYPE_BLEND;
	case Velorn::MaterialType::Null: return MAT_TYPE_NULL;
	case Velorn::MaterialType::Coating: return MAT_TYPE_COATING;
	case Velorn::MaterialType::DoubleSidedThin: return MAT_TYPE_DOUBLE_SIDED_THIN;
	default: return 0;
	}
}

// The extension of a path, folded to lower case.
String extension(const std::string& path)
{
	return Filename(String(path)).GetSuffix().ToLower();
}

// The file name of an n-k data path ("nkdata/Au.nk" gives "Au.nk"), with
// either separator.
std::string nkFileName(const std::string& path)
{
	const size_t sep = path.find_last_of("/\\");
	return sep == std::string::npos ? path : path.substr(sep + 1);
}

// The nodes of a material file. The renderer's material files hold a
// "scenedata" element; a scene file of material nodes reads as well.
Velorn::Vector<Reference<Velorn::SceneNode>> readMaterialFile(const std::string& path)
{
	std::string root_name;
	{
		Velorn::VelornXMLDoc doc(path);
		if(const TiXmlElement* root = doc.getRootElement())
			root_name = root->ValueStr();
	}
	Velorn::SceneParser parser;
	if(root_name == "scenedata")
		return parser.parseSceneDataFile(path);
	Reference<Velorn::SceneNodeRoot> root = parser.parseFile(path, "");
	return root->getChildren();
}

// The surface channels in the import's order: bump, normal map,
// displacement, the emission layer, base emission and emission.
void fillSurface(MaterialFill& fill, const Velorn::SurfaceMaterial& material)
{
	importDisplacementChannel(fill, material.bump, bump_channel, 0, "Bump");
	importNormalMap(fill, material.normal_map);
	importDisplacementChannel(fill, material.displacement, displacement_channel, 0, "Displacement");
	fill.data.SetInt32(MAT_EMISSION_LAYER, (int32_t)material.layer);
	importBaseEmission(fill, material.base_emission);
	importSpectrumChannel(fill, material.emission, emission_channel, SpectrumTarget::Emission);
}

void fillAbsorptionLayer(MaterialFill& fill, const Reference<Velorn::WavelengthDependentParam>& layer)
{
	importSpectrumChannel(fill, layer, absorption_layer_channel, SpectrumTarget::AbsorptionLayer);
}

void fillExponent(MaterialFill& fill, const Reference<Velorn::WavelengthIndependentParam>& exponent)
{
	importRealChannel(fill, exponent, importChannelIds(exponent_channel), MAT_EXPONENT_VALUE);
}

// A generic real channel's constant sets its switch.
void fillGenericReal(MaterialFill& fill, const Reference<Velorn::WavelengthIndependentParam>& param, int32_t base,
	double scale = 1.0)
{
	importRealChannel(fill, param, genericRealChannel(base), base + MAT_CH_VALUE, scale, true);
}

void fillGenericSpectrum(MaterialFill& fill, const Reference<Velorn::WavelengthDependentParam>& param, int32_t base)
{
	importSpectrumChannel(fill, param, genericSpectrumChannel(base), SpectrumTarget::Generic);
}

void fillPhong(MaterialFill& fill, const Velorn::PhongMaterial& phong)
{
	importSpectrumChannel(fill, phong.diffuse_albedo, albedo_channel, SpectrumTarget::Albedo);
	if(phong.specular_reflectivity.nonNull())
	{
		importSpectrumChannel(fill, phong.specular_reflectivity, albedo_channel, SpectrumTarget::Albedo);
		fill.data.SetBool(MAT_PHONG_SPECULAR_MODE, true);
	}
	fillExponent(fill, phong.exponent);
	if(!phong.nk_data.empty())
	{
		fill.data.SetBool(MAT_PHONG_USE_NK, true);
		// A file the list does not have leaves the choice as it was.
		const int32_t index = FindNkFile(String(nkFileName(phong.nk_data.str())));
		if(index >= 0)
			fill.data.SetInt32(MAT_PHONG_NK_FILE, index);
	}
	fill.data.SetFloat(MAT_PHONG_IOR, phong.ior);
	fillSurface(fill, phong);
}

// The import's text for a scene name.
String nameOf(const Velorn::SceneNode& node)
{
	return hostText(node.getName());
}

} // namespace

MaterialImporter::MaterialImporter(BaseDocument& document_) : document(document_) {}

String MaterialImporter::warningText(const std::vector<String>& warnings)
{
	if(warnings.empty())
		return String();
	String text("Import warnings:");
	for(const String& warning : warnings)
		text += String("\n- ") + warning;
	return text;
}

void MaterialImporter::showWarnings()
{
	if(!warning_list.empty())
		MessageDialog(warningText(warning_list));
	warning_list.clear();
}

void MaterialImporter::importFile(const Filename& file)
{
	std::string path = file.GetString().GetStdString();
	unpacked_folder.clear();
	if(extension(path) == String("pvlm"))
	{
		const std::string materials = pluginMaterialsFolder();
		if(materials.empty())
			GePrint(String("Material archive '" + path + "' cannot be unpacked: the plug-in's folder is not known."));
		else
		{
			// A new folder named by the timer; a folder of that name from an
			// import within the same millisecond moves the name on by one.
			int64_t stamp = GeGetTimer();
			std::string folder = Velorn::FileUtils::join(materials, std::to_string(stamp));
			while(Velorn::Platform::pathExists(folder))
				folder = Velorn::FileUtils::join(materials, std::to_string(++stamp));
			const ArchiveUnpack unpacked = unpackMaterialArchive(path, folder);
			if(unpacked.ok)
			{
				path = unpacked.material_file;
				unpacked_folder = folder;
			}
			else
				GePrint(String(unpacked.message));
		}
	}
	if(extension(path) != String("vlm"))
	{
		GePrint(String("no vlm"));
		showWarnings();
		return;
	}

	Velorn::Vector<Reference<Velorn::SceneNode>> nodes;
	try
	{
		nodes = readMaterialFile(path);
	}
	catch(const Velorn::MessageException& e)
	{
		GePrint(String("Failed to parse material: ") + String(e.what()));
		showWarnings();
		return;
	}
	catch(const std::bad_alloc&)
	{
		GePrint(String("Failed to parse material: out of memory"));
		showWarnings();
		return;
	}
	importNodes(nodes, Velorn::FileUtils::getDirectory(path));
	EventAdd();
	showWarnings();
}

void MaterialImporter::importNodes(
	const Velorn::Vector<Reference<Velorn::SceneNode>>& nodes, const std::string& directory_)
{
	file_nodes = nodes;
	directory = directory_;
	for(const Reference<Velorn::SceneNode>& node : file_nodes)
		if(node.nonNull() && node->getType() == Velorn::SceneNodeType::Material)
			importMaterial(static_cast<const Velorn::SceneNodeMaterial&>(*node));
	file_nodes.clear();
}

const Velorn::SceneNodeMaterial* MaterialImporter::findMaterialNode(
	const Reference<Velorn::SceneNodeMaterial>& bound, Velorn::UID uid) const
{
	if(bound.nonNull())
		return bound.getPointer();
	if(!uid.valid())
		return nullptr;
	for(const Reference<Velorn::SceneNode>& node : file_nodes)
		if(node.nonNull() && node->uid == uid)
			return dynamic_cast<const Velorn::SceneNodeMaterial*>(node.getPointer());
	return nullptr;
}

const Velorn::SceneNode* MaterialImporter::findMediumNode(const Velorn::SceneNode* bound, Velorn::UID uid) const
{
	if(bound)
		return bound;
	if(!uid.valid())
		return nullptr;
	for(const Reference<Velorn::SceneNode>& node : file_nodes)
		if(node.nonNull() && node->uid == uid && node->getType() == Velorn::SceneNodeType::Medium)
			return node.getPointer();
	return nullptr;
}

BaseMaterial* MaterialImporter::linkedMaterial(const Velorn::SceneNodeMaterial* target)
{
	if(!target)
		return nullptr;
	const String name = nameOf(*target);
	if(BaseMaterial* found = findMaterial(document, name))
		return found;
	// A node already on its way in that has no material in the document
	// (none is left for it) ends a cycle here.
	if(in_progress.count(target))
		return nullptr;
	// Each link imported first takes a level of the stack; a file whose
	// links chain further than this is cut there.
	if(in_progress.size() >= max_link_depth)
	{
		GePrint(String("Material \"") + name + String("\" lies more than " + std::to_string(max_link_depth) +
			" links deep; it is imported by its own turn in the file, and the link to it was left empty."));
		return nullptr;
	}
	importMaterial(*target);
	return findMaterial(document, name);
}

BaseMaterial* MaterialImporter::importMaterial(const Velorn::SceneNodeMaterial& node)
{
	if(node.material.isNull())
		return nullptr;
	const String name = nameOf(node);
	// An import never duplicates a material by name, and a null material
	// leaves none behind.
	if(findMaterial(document, name) || node.material->getType() == Velorn::MaterialType::Null)
		return nullptr;
	BaseMaterial* mat = BaseMaterial::Alloc(ID_VELORN_MATERIAL);
	if(!mat)
		return nullptr;
	document.InsertMaterial(mat);
	mat->SetName(name);

	// A class the plug-in has no kind for leaves the material's defaults.
	const int32_t kind = hostKind(node.material->getType());
	if(!kind)
		GePrint(String("Material \"") + name + String("\" is a " + node.material->getTypeName().str() +
			" material, which the plug-in has no kind for; it was imported as a default material."));
	else
	{
		mat->GetDataInstance()->SetInt32(MAT_TYPE, kind);
		in_progress.insert(&node);
		fill(*mat, *node.material);
		in_progress.erase(&node);
	}
	BaseContainer& data = *mat->GetDataInstance();
	applyKindSwitchRule(data, data.GetInt32(MAT_TYPE));
	created_materials.push_back(mat);
	return mat;
}

void MaterialImporter::fill(BaseMaterial& host, const Velorn::Material& material)
{
	MaterialFill fill{host, *host.GetDataInstance(), material, host.GetName(), directory, warning_list};
	BaseContainer& data = fill.data;
	// A material link goes through the material's own check, which refuses
	// a link that would make the material use itself.
	auto link = [&](int32_t id, const Reference<Velorn::SceneNodeMaterial>& bound, Velorn::UID uid) {
		if(bound.isNull() && !uid.valid())
			return;
		const Velorn::SceneNodeMaterial* target = findMaterialNode(bound, uid);
		if(!target)
		{
			GePrint(String("Material \"") + fill.name + String("\": its link to UID " + uid.toString() +
				" names no material of the file; the link was left empty."));
			return;
		}
		BaseMaterial* linked = linkedMaterial(target);
		if(linked && !host.SetParameter(DescID(id), GeData(static_cast<BaseList2D*>(linked))))
			GePrint(String("Material \"") + fill.name + String("\": the link to \"") + linked->GetName() +
				String("\" would make the material use itself; it was left empty."));
	};
	auto medium = [&](const Reference<Velorn::SceneNodeMedium>& bound, Velorn::UID uid) {
		const auto* node = dynamic_cast<const Velorn::SceneNodeMedium*>(findMediumNode(bound.getPointer(), uid));
		if(node && node->medium.nonNull())
			importMedium(fill, *node->medium);
		else if(bound.isNull() && uid.valid())
			GePrint(String("Material \"") + fill.name + String("\": its medium of UID " + uid.toString() +
				" is no medium of the file; the medium was not imported."));
	};

	switch(material.getType())
	{
	case Velorn::MaterialType::Diffuse:
		if(const auto* m = dynamic_cast<const Velorn::DiffuseMaterial*>(&material))
		{
			importSpectrumChannel(fill, m->albedo, albedo_channel, SpectrumTarget::Albedo);
			fillSurface(fill, *m);
		}
		break;
	case Velorn::MaterialType::DiffuseTransmitter:
		// The transmitter's medium is not imported.
		if(const auto* m = dynamic_cast<const Velorn::DiffuseTransmitter*>(&material))
		{
			importSpectrumChannel(fill, m->albedo, albedo_channel, SpectrumTarget::Albedo);
			fillSurface(fill, *m);
		}
		break;
	case Velorn::MaterialType::OrenNayar:
		if(const auto* m = dynamic_cast<const Velorn::OrenNayarMaterial*>(&material))
		{
			importSpectrumChannel(fill, m->albedo, albedo_channel, SpectrumTarget::Albedo);
			importRealChannel(fill, m->sigma, sigma_channel, MAT_SIGMA_VALUE);
			fillSurface(fill, *m);
		}
		break;
	case Velorn::MaterialType::Phong:
		if(const auto* m = dynamic_cast<const Velorn::PhongMaterial*>(&material))
			fillPhong(fill, *m);
		break;
	case Velorn::MaterialType::Specular:
		if(const auto* m = dynamic_cast<const Velorn::SpecularMaterial*>(&material))
		{
			data.SetBool(MAT_TRANSPARENT, m->transparent);
			medium(m->internal_medium, m->internal_medium_uid);
			fillSurface(fill, *m);
			fillAbsorptionLayer(fill, m->absorption_layer_transmittance);
			data.SetString(MAT_PRIVATE_DATA, hostText(m->private_data));
		}
		break;
	case Velorn::MaterialType::GlossyTransparent:
		if(const auto* m = dynamic_cast<const Velorn::GlossyTransparent*>(&material))
		{
			fillExponent(fill, m->exponent);
			medium(m->internal_medium, m->internal_medium_uid);
			fillSurface(fill, *m);
			fillAbsorptionLayer(fill, m->absorption_layer_transmittance);
		}
		break;
	case Velorn::MaterialType::Blend:
		if(const auto* m = dynamic_cast<const Velorn::BlendMaterial*>(&material))
		{
			link(MAT_BLEND_A, m->a_mat, m->a_mat_uid);
			link(MAT_BLEND_B, m->b_mat, m->b_mat_uid);
			importDisplacementChannel(fill, m->blend, blend_factor_channel, MAT_ALPHA_VALUE, "Blend factor");
			data.SetBool(MAT_BLEND_STEP, m->step_blend);
		}
		break;
	case Velorn::MaterialType::Coating:
		if(const auto* m = dynamic_cast<const Velorn::CoatingMaterial*>(&material))
		{
			link(MAT_COAT_SUBSTRATE, m->substrate_material, m->substrate_material_uid);
			data.SetFloat(MAT_COAT_IOR, m->ior);
			data.SetBool(MAT_COAT_INTERFERENCE, m->interference);
			fillGenericSpectrum(fill, m->absorption, MAT_CH_COAT_ABSORPTION);
			fillGenericReal(fill, m->fresnel_scale, MAT_CH_FRESNEL_SCALE);
			fillGenericReal(fill, m->roughness, MAT_CH_ROUGHNESS);
			// The scene counts metres, the parameter micrometres.
			fillGenericReal(fill, m->thickness, MAT_CH_COAT_THICKNESS, 1e6);
			fillSurface(fill, *m);
		}
		break;
	case Velorn::MaterialType::DoubleSidedThin:
		if(const auto* m = dynamic_cast<const Velorn::DoubleSidedThinMaterial*>(&material))
		{
			link(MAT_THIN_FRONT, m->front_material, m->front_material_uid);
			link(MAT_THIN_BACK, m->back_material, m->back_material_uid);
			data.SetFloat(MAT_THIN_IOR, m->ior);
			fillGenericSpectrum(fill, m->transmittance, MAT_CH_TRANSMITTANCE);
			fillGenericReal(fill, m->front_fresnel_scale, MAT_CH_FRESNEL_SCALE);
			fillGenericReal(fill, m->back_fresnel_scale, MAT_CH_BACK_FRESNEL_SCALE);
			fillGenericReal(fill, m->front_roughness, MAT_CH_ROUGHNESS);
			fillGenericReal(fill, m->back_roughness, MAT_CH_BACK_ROUGHNESS);
			fillGenericReal(fill, m->r_f, MAT_CH_R_F);
			fillSurface(fill, *m);
		}
		break;
	default: break;
	}
}

std::string pluginMaterialsFolder()
{
	if(!plugin_path || !plugin_path->Content())
		return std::string();
	return Velorn::FileUtils::join(plugin_path->GetString().GetStdString(), "materials");
}

namespace
{

class ImportMaterialCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override
	{
		if(!doc)
			return false;
		Filename file;
		if(!FileSelect(file, FILESELECT_LOAD, String("Select .vlm/.pvlm file")))
			return true;
		MaterialImporter importer(*doc);
		importer.importFile(file);
		return true;
	}
};

} // namespace

bool RegisterImportMaterialCommand()
{
	return registerNamed(IMPORT_MATERIAL_NAME_STRING, [](const String& name) {
		return RegisterCommandPlugin(ID_IMPORT_MATERIAL, name, 0, moduleResourceFile("Export.tif"),
			String("Import .vlm"), new ImportMaterialCommand());
	});
}
