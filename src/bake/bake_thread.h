#pragma once

#include "c4d/base_container.h"
#include "c4d/c4d_thread.h"
#include "c4d/filename.h"

#include <array>
#include <cstdint>
#include <mutex>

class BaseDocument;
class BaseMaterial;
class BaseObject;
class BaseShader;
class TextureTag;
class UVWTag;

// The settings container the bake dialog hands to the thread: the host
// baking service's parameters (bake_texture.h) and these of its own.
enum
{
	// Filename: the base of the output names.
	BAKE_FILE = 80001,
	// Bools: which channels to bake.
	BAKE_ALBEDO = 80002,
	BAKE_SIGMA = 80003,
	BAKE_EXPONENT = 80004,
	BAKE_BUMP = 80005,
	BAKE_DISPLACEMENT = 80006,
	BAKE_EMISSION = 80007,
	BAKE_BLEND = 80008,
};

// One channel of the plug-in material that can be baked to a file.
struct BakeChannel
{
	// The material's link parameter that holds the channel's shader.
	int32_t link;
	// The switch of the settings container that asks for it.
	int32_t setting;
	// Appended to the base name, suffix removed.
	const char* suffix;
	// Saved with one grey value a pixel.
	bool grey;
};

// The channels in the order they are baked.
extern const std::array<BakeChannel, 7> bake_channels;

// The output file of one channel: base without its suffix, then the
// channel's suffix ("C:/out/car.jpg" and "_albedo.jpg" give
// "C:/out/car_albedo.jpg").
Filename bakeFileName(const Filename& base, const BakeChannel& channel);

// Bakes the chosen shader channels of a plug-in material into JPEG files,
// on its own thread, from copies of what it needs, so that the user keeps
// working on the document meanwhile. For each channel the host's baking
// service renders the shader through a standard material of a document of
// the thread's own, laid out by the UVW tag.
class BakeThread : public C4DThread
{
public:
	// Takes object (a free polygon object with the texture tag tag and the
	// UVW tag uvw among its tags) and material (a free copy of the plug-in
	// material whose channels are baked). documentPath is where relative
	// file names of the shaders are looked up.
	BakeThread(const BaseContainer& settings, BaseObject* object, TextureTag* tag, UVWTag* uvw, BaseMaterial* material,
		const Filename& documentPath);
	~BakeThread() override;

	String GetThreadName() const override;

	// The file written for the channel whose link parameter is link; empty
	// while not written, or when the channel was not chosen, had no shader
	// or failed.
	Filename GetFile(int32_t link) const;

protected:
	void Main() override;

private:
	// Bakes one channel into its file; false when the service or the save
	// failed, leaving no file.
	bool bakeChannel(size_t index, BaseShader* shader);

	BaseContainer settings;
	// The thread's document: the object and the standard material the
	// service bakes through. It owns both.
	BaseDocument* document;
	TextureTag* tag;
	UVWTag* uvw;
	BaseMaterial* material;
	BaseMaterial* standard;
	std::array<Filename, 7> files;
	mutable std::mutex filesMutex;
};
