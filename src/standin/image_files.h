#pragma once

#include "support/bitmap.h"
#include "support/image.h"

#include <string>

namespace Velorn
{
namespace Standin
{

// Reads a PNG or JPEG file (told apart by its first bytes) into a float
// picture: each 8- or 16-bit value scaled to [0, 1] and raised to gamma;
// grey pictures fill all three channels, alpha is dropped. Throws Exception
// with the path and the reason.
void loadImageFile(const std::string& path, float gamma, Image& out);

// Writes an 8-bit picture of 3 or 4 bytes per pixel as RGB or RGBA PNG.
void writePNG(const std::string& path, const Bitmap& bitmap);

// Writes a float RGB picture as a half float EXR file, alpha 1.
void writeEXR(const std::string& path, const Image& image);

} // namespace Standin
} // namespace Velorn
