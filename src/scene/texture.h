#pragma once

#include "scene/ostream.h"
#include "scene/tex_coord_generator.h"
#include "scene/visit_operation.h"
#include "scene/write_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"

namespace Velorn
{

// An image file used by a material or a shader. Textures live by value in
// vectors; parameters refer to them by index. A copy shares the coordinate
// generator (copyDeep does not).
class Texture
{
public:
	virtual void writeXML(OStream& stream, unsigned depth, WriteContext& context) const;

	// A copy with a coordinate generator of its own.
	Texture copyDeep() const;

	String path;
	// a, b, c and exponent shape the value read from the image; the
	// renderer gives them their meaning, the scene passes them through.
	double a = 0;
	double b = 1;
	double c = 0;
	int uv_set_index = 0;
	double exponent = 2.2;
	Reference<TexCoordGenerator> tex_coord_generation;
	bool smooth = false;
};

// The part of a walk that concerns a stored file path: GetDependencies
// appends it, UpdatePaths replaces it by its mapped path; other walks leave
// it alone.
void visitPath(String& path, VisitOperation& op);
// visitPath for the path of each texture, in order.
void visitTexturePaths(Vector<Texture>& textures, VisitOperation& op);

} // namespace Velorn
