#include "c4d/base_bitmap.h"

#include "c4d/base_container.h"

#include "support/exceptions.h"
#include "support/file_utils.h"

#include <algorithm>
#include <atomic>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <jerror.h>
#include <jpeglib.h>
#include <png.h>

namespace FileUtils = Velorn::FileUtils;

namespace
{

// The most pixels a picture may have, made or loaded: a file's header
// should not decide how much memory the host takes (a truncated file that
// claims a huge size would otherwise allocate all of it before failing).
constexpr int64_t maxPixels = int64_t(1) << 28;

bool sizeAllowed(int64_t width, int64_t height)
{
	return width >= 1 && height >= 1 && width * height <= maxPixels;
}

// Resizes without letting an allocation failure escape: the decoders below
// call it between setjmp and the library calls that may jump back.
bool allocate(std::vector<uint8_t>& bytes, size_t size) noexcept
{
	try
	{
		bytes.assign(size, 0);
		return true;
	}
	catch(const std::bad_alloc&)
	{
		return false;
	}
}

// A decoded picture before it replaces the bitmap's.
struct Decoded
{
	int32_t width = 0;
	int32_t height = 0;
	std::vector<uint8_t> rgb;
	std::vector<uint8_t> alpha;
	bool hasAlpha = false;
};

bool isPng(const std::vector<unsigned char>& bytes)
{
	static const unsigned char signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
	return bytes.size() >= 8 && std::memcmp(bytes.data(), signature, 8) == 0;
}

bool isJpeg(const std::vector<unsigned char>& bytes)
{
	return bytes.size() >= 3 && bytes[0] == 0xff && bytes[1] == 0xd8 && bytes[2] == 0xff;
}

// PNG through libpng's simplified interface, which keeps its error jumps
// inside the library and answers failures as return values.
IMAGERESULT decodePng(const std::vector<unsigned char>& bytes, Decoded& out)
{
	png_image image;
	std::memset(&image, 0, sizeof image);
	image.version = PNG_IMAGE_VERSION;
	if(!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()))
		return IMAGERESULT_FILESTRUCTURE;
	if(!sizeAllowed(image.width, image.height))
	{
		png_image_free(&image);
		return IMAGERESULT_OUTOFMEMORY;
	}
	// Sixteen-bit files without gamma are taken as encoded like eight-bit
	// ones, as the tools that write them mean, not as linear light.
	image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
	out.hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
	// Eight bits a component whatever the file holds; grey and palette
	// pictures are expanded to colour.
	image.format = out.hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
	std::vector<uint8_t> pixels;
	if(!allocate(pixels, PNG_IMAGE_SIZE(image)))
	{
		png_image_free(&image);
		return IMAGERESULT_OUTOFMEMORY;
	}
	// On failure the library has freed what it held.
	if(!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr))
		return IMAGERESULT_FILESTRUCTURE;
	out.width = (int32_t)image.width;
	out.height = (int32_t)image.height;
	const size_t count = (size_t)out.width * out.height;
	if(!out.hasAlpha)
	{
		out.rgb.swap(pixels);
		return IMAGERESULT_OK;
	}
	if(!allocate(out.rgb, 3 * count) || !allocate(out.alpha, count))
		return IMAGERESULT_OUTOFMEMORY;
	for(size_t i = 0; i < count; ++i)
	{
		std::copy(&pixels[4 * i], &pixels[4 * i + 3], &out.rgb[3 * i]);
		out.alpha[i] = pixels[4 * i + 3];
	}
	return IMAGERESULT_OK;
}

// libjpeg reports errors through error_exit, which must not return: it
// jumps back to the setjmp of the function that called the library. Those
// functions hold no C++ objects of their own, so the jump skips nothing
// that needs destroying, and they leave the library's state behind with
// jpeg_destroy. Warnings are kept quiet, except that a file that ends
// early (the library then makes up the rest as grey) is noted as a failure.
struct JpegErrors
{
	jpeg_error_mgr pub;
	std::jmp_buf jump;
	bool truncated;
};

void jpegErrorExit(j_common_ptr info)
{
	std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1);
}

void jpegMessage(j_common_ptr info, int level)
{
	if(level < 0 && info->err->msg_code == JWRN_JPEG_EOF)
		reinterpret_cast<JpegErrors*>(info->err)->truncated = true;
}

void setUpErrors(JpegErrors& errors)
{
	jpeg_std_error(&errors.pub);
	errors.pub.error_exit = jpegErrorExit;
	errors.pub.emit_message = jpegMessage;
	errors.truncated = false;
}

IMAGERESULT decodeJpeg(const std::vector<unsigned char>& bytes, Decoded& out)
{
	jpeg_decompress_struct info;
	std::memset(&info, 0, sizeof info);
	JpegErrors errors;
	setUpErrors(errors);
	info.err = &errors.pub;
	if(setjmp(errors.jump))
	{
		jpeg_destroy_decompress(&info);
		return IMAGERESULT_FILESTRUCTURE;
	}
	jpeg_create_decompress(&info);
	jpeg_mem_src(&info, bytes.data(), (unsigned long)bytes.size());
	jpeg_read_header(&info, TRUE);
	info.out_color_space = JCS_RGB;
	jpeg_start_decompress(&info);
	if(!sizeAllowed(info.output_width, info.output_height) ||
		!allocate(out.rgb, (size_t)info.output_width * info.output_height * 3))
	{
		jpeg_destroy_decompress(&info);
		return IMAGERESULT_OUTOFMEMORY;
	}
	while(info.output_scanline < info.output_height)
	{
		JSAMPROW row = out.rgb.data() + (size_t)info.output_scanline * info.output_width * 3;
		jpeg_read_scanlines(&info, &row, 1);
	}
	out.width = (int32_t)info.output_width;
	out.height = (int32_t)info.output_height;
	jpeg_finish_decompress(&info);
	jpeg_destroy_decompress(&info);
	return errors.truncated ? IMAGERESULT_FILESTRUCTURE : IMAGERESULT_OK;
}

// The encoded bytes of a JPEG, in memory that libjpeg allocated.
struct JpegBuffer
{
	unsigned char* data = nullptr;
	unsigned long size = 0;

	JpegBuffer() = default;
	JpegBuffer(const JpegBuffer&) = delete;
	JpegBuffer& operator=(const JpegBuffer&) = delete;
	~JpegBuffer() { std::free(data); }
};

// pixels holds components (1 or 3) bytes a pixel.
IMAGERESULT encodeJpeg(
	const uint8_t* pixels, int32_t width, int32_t height, int32_t components, int32_t quality, JpegBuffer& out)
{
	jpeg_compress_struct info;
	std::memset(&info, 0, sizeof info);
	JpegErrors errors;
	setUpErrors(errors);
	info.err = &errors.pub;
	if(setjmp(errors.jump))
	{
		jpeg_destroy_compress(&info);
		return IMAGERESULT_MISC_ERROR;
	}
	jpeg_create_compress(&info);
	jpeg_mem_dest(&info, &out.data, &out.size);
	info.image_width = (JDIMENSION)width;
	info.image_height = (JDIMENSION)height;
	info.input_components = components;
	info.in_color_space = components == 1 ? JCS_GRAYSCALE : JCS_RGB;
	jpeg_set_defaults(&info);
	jpeg_set_quality(&info, quality, TRUE);
	jpeg_start_compress(&info, TRUE);
	while(info.next_scanline < info.image_height)
	{
		JSAMPROW row = const_cast<uint8_t*>(pixels) + (size_t)info.next_scanline * width * components;
		jpeg_write_scanlines(&info, &row, 1);
	}
	jpeg_finish_compress(&info);
	jpeg_destroy_compress(&info);
	return IMAGERESULT_OK;
}

// format is one of libpng's simplified formats; pixels match it.
IMAGERESULT encodePng(const uint8_t* pixels, int32_t width, int32_t height, uint32_t format, std::vector<uint8_t>& out)
{
	png_image image;
	std::memset(&image, 0, sizeof image);
	image.version = PNG_IMAGE_VERSION;
	image.width = (png_uint_32)width;
	image.height = (png_uint_32)height;
	image.format = format;
	png_alloc_size_t size = 0;
	if(!png_image_write_get_memory_size(image, size, 0, pixels, 0, nullptr))
		return IMAGERESULT_MISC_ERROR;
	if(!allocate(out, size))
		return IMAGERESULT_OUTOFMEMORY;
	if(!png_image_write_to_memory(&image, out.data(), &size, 0, pixels, 0, nullptr))
		return IMAGERESULT_MISC_ERROR;
	out.resize(size);
	return IMAGERESULT_OK;
}

// Writes the bytes to a file beside the target and renames it over the
// target only once it is whole, so that a failed save leaves neither a
// half-written picture nor a broken older one.
IMAGERESULT writeWhole(const std::string& target, const unsigned char* data, size_t size)
{
	static std::atomic<uint32_t> counter{0};
	const std::string partial = target + ".part" + std::to_string(counter++);
	try
	{
		FileUtils::writeEntireFile(partial, data, size);
		FileUtils::moveFile(partial, target);
		return IMAGERESULT_OK;
	}
	catch(const Velorn::FileUtilsExcep&)
	{
		if(FileUtils::fileExists(partial))
		{
			try
			{
				FileUtils::deleteFile(partial);
			}
			catch(const Velorn::FileUtilsExcep&)
			{
				// Nothing more to be done about it; the save has failed anyway.
			}
		}
		return IMAGERESULT_FILEERROR;
	}
}

uint8_t toByte(int32_t value)
{
	return (uint8_t)std::clamp(value, 0, 255);
}

} // namespace

BaseBitmap::BaseBitmap() = default;
BaseBitmap::~BaseBitmap() = default;

IMAGERESULT BaseBitmap::Init(int32_t x, int32_t y, int32_t depth)
{
	if(x < 1 || y < 1 || (depth != 24 && depth != 32))
		return IMAGERESULT_PARAM_ERROR;
	const size_t count = (size_t)x * y;
	std::vector<uint8_t> newRgb, newAlpha;
	if(!sizeAllowed(x, y) || !allocate(newRgb, 3 * count) || (depth == 32 && !allocate(newAlpha, count)))
		return IMAGERESULT_OUTOFMEMORY;
	width = x;
	height = y;
	rgb.swap(newRgb);
	alphaValues.swap(newAlpha);
	alpha = depth == 32;
	return IMAGERESULT_OK;
}

IMAGERESULT BaseBitmap::Init(const Filename& name)
{
	const std::string path = name.GetString().GetStdString();
	if(path.empty() || !FileUtils::fileExists(path))
		return IMAGERESULT_NOTEXISTING;
	std::vector<unsigned char> bytes;
	try
	{
		FileUtils::readEntireFile(path, bytes);
	}
	catch(const Velorn::FileUtilsExcep&)
	{
		return IMAGERESULT_FILEERROR;
	}
	catch(const std::bad_alloc&)
	{
		return IMAGERESULT_OUTOFMEMORY;
	}
	Decoded decoded;
	IMAGERESULT result;
	if(isPng(bytes))
		result = decodePng(bytes, decoded);
	else if(isJpeg(bytes))
		result = decodeJpeg(bytes, decoded);
	else
		return IMAGERESULT_WRONGTYPE;
	if(result != IMAGERESULT_OK)
		return result;
	width = decoded.width;
	height = decoded.height;
	rgb.swap(decoded.rgb);
	alphaValues.swap(decoded.alpha);
	alpha = decoded.hasAlpha;
	return IMAGERESULT_OK;
}

int32_t BaseBitmap::GetBt() const
{
	if(width == 0)
		return 0;
	return alpha ? 32 : 24;
}

void BaseBitmap::Clear(int32_t r, int32_t g, int32_t b)
{
	for(size_t i = 0; i + 2 < rgb.size(); i += 3)
	{
		rgb[i] = toByte(r);
		rgb[i + 1] = toByte(g);
		rgb[i + 2] = toByte(b);
	}
}

void BaseBitmap::GetPixel(int32_t x, int32_t y, uint16_t* r, uint16_t* g, uint16_t* b) const
{
	const bool inside = x >= 0 && y >= 0 && x < width && y < height;
	const uint8_t* pixel = inside ? &rgb[3 * ((size_t)y * width + x)] : nullptr;
	*r = pixel ? pixel[0] : 0;
	*g = pixel ? pixel[1] : 0;
	*b = pixel ? pixel[2] : 0;
}

void BaseBitmap::SetPixel(int32_t x, int32_t y, int32_t r, int32_t g, int32_t b)
{
	if(x < 0 || y < 0 || x >= width || y >= height)
		return;
	uint8_t* pixel = &rgb[3 * ((size_t)y * width + x)];
	pixel[0] = toByte(r);
	pixel[1] = toByte(g);
	pixel[2] = toByte(b);
}

BaseBitmap* BaseBitmap::AddChannel(bool, bool)
{
	if(width == 0)
		return nullptr;
	if(!alpha)
	{
		if(!allocate(alphaValues, (size_t)width * height))
			return nullptr;
		alpha = true;
	}
	return this;
}

void BaseBitmap::GetAlphaPixel(BaseBitmap* channel, int32_t x, int32_t y, uint16_t* value) const
{
	const bool inside = channel == this && alpha && x >= 0 && y >= 0 && x < width && y < height;
	*value = inside ? alphaValues[(size_t)y * width + x] : 0;
}

void BaseBitmap::SetAlphaPixel(BaseBitmap* channel, int32_t x, int32_t y, int32_t value)
{
	if(channel != this || !alpha || x < 0 || y < 0 || x >= width || y >= height)
		return;
	alphaValues[(size_t)y * width + x] = toByte(value);
}

IMAGERESULT BaseBitmap::Save(const Filename& name, int32_t format, const BaseContainer* data, int32_t savebits) const
{
	if(width == 0 || !name.Content() || (format != FILTER_PNG && format != FILTER_JPG))
		return IMAGERESULT_PARAM_ERROR;
	const bool grey = (savebits & SAVEBIT_GREYSCALE) != 0;
	// The alpha channel is written only where the format has one.
	const bool withAlpha = format == FILTER_PNG && alpha && (savebits & SAVEBIT_ALPHA) != 0;
	const int32_t colourComponents = grey ? 1 : 3;
	const int32_t components = colourComponents + (withAlpha ? 1 : 0);
	const size_t count = (size_t)width * height;
	std::vector<uint8_t> pixels;
	if(!allocate(pixels, count * components))
		return IMAGERESULT_OUTOFMEMORY;
	for(size_t i = 0; i < count; ++i)
	{
		uint8_t* out = &pixels[i * components];
		const uint8_t* in = &rgb[3 * i];
		if(grey)
			out[0] = (uint8_t)((in[0] + in[1] + in[2] + 1) / 3);
		else
			std::copy(in, in + 3, out);
		if(withAlpha)
			out[colourComponents] = alphaValues[i];
	}

	if(format == FILTER_JPG)
	{
		const int32_t quality = std::clamp(data ? data->GetInt32(JPGSAVER_QUALITY, 90) : 90, 0, 100);
		JpegBuffer encoded;
		const IMAGERESULT result = encodeJpeg(pixels.data(), width, height, components, quality, encoded);
		if(result != IMAGERESULT_OK)
			return result;
		return writeWhole(name.GetString().GetStdString(), encoded.data, encoded.size);
	}
	const uint32_t pngFormat = grey ? (withAlpha ? PNG_FORMAT_GA : PNG_FORMAT_GRAY)
									: (withAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB);
	std::vector<uint8_t> encoded;
	const IMAGERESULT result = encodePng(pixels.data(), width, height, pngFormat, encoded);
	if(result != IMAGERESULT_OK)
		return result;
	return writeWhole(name.GetString().GetStdString(), encoded.data(), encoded.size());
}

BaseBitmap* BaseBitmap::GetClone() const
{
	BaseBitmap* copy = new(std::nothrow) BaseBitmap();
	if(!copy)
		return nullptr;
	copy->width = width;
	copy->height = height;
	copy->rgb = rgb;
	copy->alphaValues = alphaValues;
	copy->alpha = alpha;
	return copy;
}
