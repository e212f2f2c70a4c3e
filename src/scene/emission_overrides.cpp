#include "scene/emission_overrides.h"

#include "scene/scene_node_material.h"
#include "scene/xml_write.h"

namespace Velorn
{

namespace
{

UID boundOrStoredUID(const Reference<SceneNodeMaterial>& material, UID stored)
{
	return material.nonNull() ? material->uid : stored;
}

} // namespace

UID IESProfile::materialUID() const { return boundOrStoredUID(material, material_uid); }

void IESProfile::writeXML(OStream& stream, unsigned depth, const WriteContext& context) const
{
	using namespace XMLWrite;
	writeOpenTag(stream, depth, "ies_profile");
	writeString(stream, depth + 1, "material_uid", String(materialUID().toString()));
	writePath(stream, depth + 1, "path", path, context);
	writeCloseTag(stream, depth, "ies_profile");
}

UID EmissionScale::materialUID() const { return boundOrStoredUID(material, material_uid); }

const char* EmissionScale::measureText(int32_t measure)
{
	static const char* const texts[] = {"luminous_flux", "luminous_intensity", "luminance", "luminous_emittance"};
	return measure >= 0 && measure < 4 ? texts[measure] : "";
}

void EmissionScale::writeXML(OStream& stream, unsigned depth) const
{
	if(measure == NoMeasure)
		return;
	using namespace XMLWrite;
	writeOpenTag(stream, depth, "emission_scale");
	writeString(stream, depth + 1, "measure", measureText(measure));
	writeDouble(stream, depth + 1, "value", value);
	writeString(stream, depth + 1, "material_uid", String(materialUID().toString()));
	writeCloseTag(stream, depth, "emission_scale");
}

} // namespace Velorn
