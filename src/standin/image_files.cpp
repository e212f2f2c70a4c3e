#include "standin/image_files.h"

#include "support/exceptions.h"

#include <ImfRgbaFile.h>
#include <jpeglib.h>
#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <vector>

namespace Velorn
{
namespace Standin
{

namespace
{

struct FileCloser
{
	void operator()(FILE* f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

FilePtr openFile(const std::string& path, const char* mode)
{
	FilePtr f(std::fopen(path.c_str(), mode));
	if(!f)
		throw Exception("Could not open image file '" + path + "'.");
	return f;
}

// Fills out from rows of 8- or 16-bit samples with the given channel count.
void fillImage(Image& out, uint32_t width, uint32_t height, int channels, int bit_depth,
	const std::vector<std::vector<uint8_t>>& rows, float gamma)
{
	out.resize(width, height);
	const float max_value = bit_depth == 16 ? 65535.0f : 255.0f;
	for(uint32_t y = 0; y < height; ++y)
		for(uint32_t x = 0; x < width; ++x)
		{
			float v[4] = {0, 0, 0, 0};
			for(int c = 0; c < channels && c < 4; ++c)
			{
				const size_t i = (size_t)x * channels + c;
				const unsigned raw = bit_depth == 16 ? (rows[y][i * 2] << 8) | rows[y][i * 2 + 1] : rows[y][i];
				v[c] = std::pow(raw / max_value, gamma);
			}
			float* p = out.getPixel(x, y);
			const bool grey = channels < 3;
			p[0] = v[0];
			p[1] = grey ? v[0] : v[1];
			p[2] = grey ? v[0] : v[2];
		}
}

// libpng's own handlers print to standard error; ours only jump back, and
// the caller reports.
void pngFail(png_structp png, png_const_charp)
{
	png_longjmp(png, 1);
}

void pngWarn(png_structp, png_const_charp) {}

void loadPNG(const std::string& path, float gamma, Image& out)
{
	FilePtr f = openFile(path, "rb");
	png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, pngFail, pngWarn);
	png_infop info = png ? png_create_info_struct(png) : nullptr;
	if(!info)
	{
		png_destroy_read_struct(&png, nullptr, nullptr);
		throw Exception("Could not read PNG file '" + path + "'.");
	}
	std::vector<std::vector<uint8_t>> rows;
	if(setjmp(png_jmpbuf(png)))
	{
		png_destroy_read_struct(&png, &info, nullptr);
		throw Exception("Corrupt PNG file '" + path + "'.");
	}
	png_init_io(png, f.get());
	png_read_info(png, info);
	// Palettes and small grey depths become plain 8-bit samples.
	png_set_expand(png);
	png_read_update_info(png, info);
	const uint32_t width = png_get_image_width(png, info);
	const uint32_t height = png_get_image_height(png, info);
	const int channels = png_get_channels(png, info);
	const int bit_depth = png_get_bit_depth(png, info);
	rows.assign(height, std::vector<uint8_t>(png_get_rowbytes(png, info)));
	std::vector<png_bytep> row_pointers(height);
	for(uint32_t y = 0; y < height; ++y)
		row_pointers[y] = rows[y].data();
	png_read_image(png, row_pointers.data());
	png_destroy_read_struct(&png, &info, nullptr);
	fillImage(out, width, height, channels, bit_depth, rows, gamma);
}

struct JpegError
{
	jpeg_error_mgr mgr;
	jmp_buf jump;
};

void jpegFail(j_common_ptr info)
{
	longjmp(reinterpret_cast<JpegError*>(info->err)->jump, 1);
}

void loadJPEG(const std::string& path, float gamma, Image& out)
{
	FilePtr f = openFile(path, "rb");
	jpeg_decompress_struct info;
	JpegError error;
	info.err = jpeg_std_error(&error.mgr);
	error.mgr.error_exit = jpegFail;
	std::vector<std::vector<uint8_t>> rows;
	if(setjmp(error.jump))
	{
		jpeg_destroy_decompress(&info);
		throw Exception("Corrupt JPEG file '" + path + "'.");
	}
	jpeg_create_decompress(&info);
	jpeg_stdio_src(&info, f.get());
	jpeg_read_header(&info, TRUE);
	info.out_color_space = info.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
	jpeg_start_decompress(&info);
	rows.assign(info.output_height, std::vector<uint8_t>((size_t)info.output_width * info.output_components));
	while(info.output_scanline < info.output_height)
	{
		JSAMPROW row = rows[info.output_scanline].data();
		jpeg_read_scanlines(&info, &row, 1);
	}
	const uint32_t width = info.output_width, height = info.output_height;
	const int channels = info.output_components;
	jpeg_finish_decompress(&info);
	jpeg_destroy_decompress(&info);
	fillImage(out, width, height, channels, 8, rows, gamma);
}

} // namespace

void loadImageFile(const std::string& path, float gamma, Image& out)
{
	unsigned char magic[4] = {0, 0, 0, 0};
	{
		FilePtr f = openFile(path, "rb");
		if(std::fread(magic, 1, 4, f.get()) != 4)
			throw Exception("Image file '" + path + "' is too short.");
	}
	if(magic[0] == 0x89 && magic[1] == 'P' && magic[2] == 'N' && magic[3] == 'G')
		loadPNG(path, gamma, out);
	else if(magic[0] == 0xFF && magic[1] == 0xD8)
		loadJPEG(path, gamma, out);
	else
		throw Exception("Image file '" + path + "' is neither PNG nor JPEG.");
}

void writePNG(const std::string& path, const Bitmap& bitmap)
{
	const uint32_t bpp = bitmap.getBytesPP();
	if(bpp != 3 && bpp != 4)
		throw Exception("PNG output needs 3 or 4 bytes per pixel.");
	FilePtr f(std::fopen(path.c_str(), "wb"));
	if(!f)
		throw Exception("Could not write image file '" + path + "'.");
	png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, pngFail, pngWarn);
	png_infop info = png ? png_create_info_struct(png) : nullptr;
	if(!info)
	{
		png_destroy_write_struct(&png, nullptr);
		throw Exception("Could not write image file '" + path + "'.");
	}
	if(setjmp(png_jmpbuf(png)))
	{
		png_destroy_write_struct(&png, &info);
		throw Exception("Could not write image file '" + path + "'.");
	}
	png_init_io(png, f.get());
	png_set_IHDR(png, info, bitmap.getWidth(), bitmap.getHeight(), 8, bpp == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB,
		PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
	png_write_info(png, info);
	for(uint32_t y = 0; y < bitmap.getHeight(); ++y)
		png_write_row(png, const_cast<png_bytep>(bitmap.getPixel(0, y)));
	png_write_end(png, nullptr);
	png_destroy_write_struct(&png, &info);
}

void writeEXR(const std::string& path, const Image& image)
{
	const uint32_t w = image.getWidth(), h = image.getHeight();
	std::vector<Imf::Rgba> pixels((size_t)w * h);
	for(uint32_t y = 0; y < h; ++y)
		for(uint32_t x = 0; x < w; ++x)
		{
			const float* p = image.getPixel(x, y);
			pixels[(size_t)y * w + x] = Imf::Rgba(p[0], p[1], p[2], 1.0f);
		}
	try
	{
		Imf::RgbaOutputFile file(path.c_str(), (int)w, (int)h, Imf::WRITE_RGBA);
		file.setFrameBuffer(pixels.data(), 1, w);
		file.writePixels((int)h);
	}
	catch(const std::exception& e)
	{
		throw Exception("Could not write EXR file '" + path + "': " + e.what());
	}
}

} // namespace Standin
} // namespace Velorn
