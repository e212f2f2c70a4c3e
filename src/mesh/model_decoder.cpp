#include "mesh/model_decoder.h"

#include "mesh/format_decoder_obj.h"
#include "mesh/format_decoder_ply.h"
#include "mesh/velorn_mesh_decoder.h"
#include "support/file_utils.h"
#include "support/string_utils.h"

#include <map>

namespace Velorn
{

namespace
{

// The decoders by extension. They hold no state, so one of each serves every
// caller and thread.
class DecoderTable
{
public:
	DecoderTable()
	{
		for(const ModelDecoder* decoder : {(const ModelDecoder*)&obj, (const ModelDecoder*)&ply, (const ModelDecoder*)&vlmesh})
			for(const std::string& extension : decoder->getExtensions())
				by_extension[extension] = decoder;
	}

	const ModelDecoder* find(const std::string& extension) const
	{
		const auto it = by_extension.find(toLowerCase(extension));
		return it == by_extension.end() ? nullptr : it->second;
	}

private:
	FormatDecoderObj obj;
	FormatDecoderPLY ply;
	VelornMeshDecoder vlmesh;
	std::map<std::string, const ModelDecoder*> by_extension;
};

// The extension of the file name part of path, or false when it has none.
bool extensionOf(const std::string& path, std::string& extension)
{
	const std::string name = FileUtils::getFilename(path);
	const size_t dot = name.rfind('.');
	if(dot == std::string::npos)
		return false;
	extension = name.substr(dot + 1);
	return true;
}

} // namespace

const ModelDecoder& findDecoder(const std::string& path)
{
	static const DecoderTable table;
	std::string extension;
	if(!extensionOf(path, extension))
		throw ModelFormatDecoderExcep("filename too short: '" + path + "'");
	const ModelDecoder* decoder = table.find(extension);
	if(!decoder)
		throw ModelFormatDecoderExcep("key '" + extension + "' not found");
	return *decoder;
}

void loadModel(const std::string& path, Mesh& mesh, float scale) { findDecoder(path).streamModel(path, mesh, scale); }

bool windsCounterClockwise(const std::string& path) { return hasExtension(path, "obj") || hasExtension(path, "ply"); }

} // namespace Velorn
