#include "scene/tex_coord_generator.h"

#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

TexCoordGenerator::~TexCoordGenerator() = default;

void UVTexCoordGenerator::writeXML(OStream& stream, unsigned depth) const
{
	writeOpenTag(stream, depth, "uv");
	writeMatrix2(stream, depth + 1, "matrix", matrix);
	writeVec2(stream, depth + 1, "translation", translation);
	writeCloseTag(stream, depth, "uv");
}

SphericalProjection::SphericalProjection(const SphericalProjection& other)
	: TexCoordGenerator(other), rotation(cloneOrNull(other.rotation))
{}

void SphericalProjection::writeProjection(OStream& stream, unsigned depth, const char* element) const
{
	writeOpenTag(stream, depth, element);
	if(rotation.nonNull())
	{
		writeOpenTag(stream, depth + 1, "rotation");
		rotation->writeXML(stream, depth + 3);
		writeCloseTag(stream, depth + 1, "rotation");
	}
	writeCloseTag(stream, depth, element);
}

} // namespace Velorn
