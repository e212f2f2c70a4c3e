// Decodes each input as a PLY file, in any of its three encodings. Any
// failure must be a decoder exception; a crash, a sanitizer report, a hang
// or an allocation beyond the fuzzer's limit is a finding.
#include "mesh/format_decoder_ply.h"
#include "mesh/mesh.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	Velorn::Mesh mesh;
	try
	{
		Velorn::FormatDecoderPLY::decodeBytes(reinterpret_cast<const char*>(data), size, mesh, 1.0f);
	}
	catch(const Velorn::ModelFormatDecoderExcep&)
	{
	}
	return 0;
}
