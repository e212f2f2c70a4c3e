// Decodes each input as OBJ text. Any failure must be a decoder exception;
// a crash, a sanitizer report or a hang is a finding.
#include "mesh/format_decoder_obj.h"
#include "mesh/mesh.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	Velorn::Mesh mesh;
	try
	{
		Velorn::FormatDecoderObj::decodeText(reinterpret_cast<const char*>(data), size, mesh, 1.0f);
	}
	catch(const Velorn::ModelFormatDecoderExcep&)
	{
	}
	return 0;
}
