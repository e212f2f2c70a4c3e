#include "scene/texture.h"

#include "scene/value_helpers.h"
#include "scene/xml_write.h"

namespace Velorn
{

using namespace XMLWrite;

void Texture::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	writeOpenTag(stream, depth, "texture");
	writePath(stream, depth + 1, "path", path, context);
	writeDouble(stream, depth + 1, "a", a);
	writeDouble(stream, depth + 1, "b", b);
	writeDouble(stream, depth + 1, "c", c);
	writeInt(stream, depth + 1, "uv_set_index", uv_set_index);
	writeDouble(stream, depth + 1, "exponent", exponent);
	writeWrapped(stream, depth, "tex_coord_generation", tex_coord_generation);
	writeBool(stream, depth + 1, "smooth", smooth);
	writeCloseTag(stream, depth, "texture");
}

Texture Texture::copyDeep() const
{
	Texture copy(*this);
	copy.tex_coord_generation = cloneOrNull(tex_coord_generation);
	return copy;
}

void visitPath(String& path, VisitOperation& op)
{
	if(op.type == VisitOperation::GetDependencies)
		op.dependency_paths.push_back(path);
	else if(op.type == VisitOperation::UpdatePaths)
		path = op.mappedPath(path);
}

void visitTexturePaths(Vector<Texture>& textures, VisitOperation& op)
{
	for(Texture& texture : textures)
		visitPath(texture.path, op);
}

} // namespace Velorn
