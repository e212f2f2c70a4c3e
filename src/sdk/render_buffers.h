#pragma once

#include "support/master_buffer.h"
#include "support/reference.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Velorn
{

class SceneNodeRoot;

// The render buffer handed to the renderer library: one MasterBuffer at the
// internal size of the scene's render settings. The renderer writes it and
// the tone mapper reads it, each holding pixels_mutex while it touches the
// pixels.
class RenderBuffer : public ThreadSafeRefCounted
{
public:
	// Sized by the root's render settings: (width + 8) * super_sample_factor
	// by (height + 8) * super_sample_factor, one layer per emission layer of
	// the tree, named from the settings' layer list. Throws Exception with
	// "no render settings node found." when the root has no settings.
	explicit RenderBuffer(const SceneNodeRoot& root);

	std::unique_ptr<MasterBuffer> master_buffer;
	std::mutex pixels_mutex;
};

// An 8-bit picture that crosses the boundary: a reader holds mutex while it
// touches the pixels, as does the tone mapper that fills it.
class UInt8Buffer : public ThreadSafeRefCounted
{
public:
	// Always 4 bytes per pixel, every byte 0.
	void resize(uint32_t new_width, uint32_t new_height);
	uint8_t* getPixel(uint32_t x, uint32_t y) { return data + ((size_t)width * y + x) * bytes_pp; }

	std::mutex mutex;
	uint8_t* data = nullptr;
	uint32_t width = 0;
	uint32_t height = 0;
	uint32_t bytes_pp = 0;

private:
	std::vector<uint8_t> storage;
};

// The float form of the tone mapped picture, 4 floats per pixel, made only
// when a caller asks for it.
class FloatBuffer : public ThreadSafeRefCounted
{
public:
	void resize(uint32_t new_width, uint32_t new_height);
	float* getPixel(uint32_t x, uint32_t y) { return data + ((size_t)width * y + x) * components; }

	std::mutex mutex;
	float* data = nullptr;
	uint32_t width = 0;
	uint32_t height = 0;
	uint32_t components = 0;

private:
	std::vector<float> storage;
};

} // namespace Velorn
