#pragma once

#include "c4d/base_list.h"
#include "c4d/plugin_registry.h"

#include <memory>

class BaseBitmap;

// The application's standard material.
enum
{
	Mmaterial = 5703,
};

// The channels of the standard material, by the application's numbers.
enum
{
	CHANNEL_COLOR = 0,
	CHANNEL_LUMINANCE = 1,
	CHANNEL_TRANSPARENCY = 2,
	CHANNEL_REFLECTION = 3,
	CHANNEL_BUMP = 6,
	CHANNEL_ALPHA = 7,
	CHANNEL_SPECULAR = 8,
	CHANNEL_SPECULARCOLOR = 9,
	CHANNEL_DISPLACEMENT = 11,
	CHANNEL_NORMAL = 13,
};

// Parameters of the standard material. A channel is on when the bool
// MATERIAL_USE_FIRST + channel is set (MATERIAL_USE_COLOR for colour, ...).
enum
{
	MATERIAL_USE_FIRST = 2000,
	MATERIAL_USE_COLOR = MATERIAL_USE_FIRST + CHANNEL_COLOR,
	MATERIAL_USE_LUMINANCE = MATERIAL_USE_FIRST + CHANNEL_LUMINANCE,
	MATERIAL_USE_TRANSPARENCY = MATERIAL_USE_FIRST + CHANNEL_TRANSPARENCY,
	MATERIAL_USE_REFLECTION = MATERIAL_USE_FIRST + CHANNEL_REFLECTION,
	MATERIAL_USE_BUMP = MATERIAL_USE_FIRST + CHANNEL_BUMP,
	MATERIAL_USE_ALPHA = MATERIAL_USE_FIRST + CHANNEL_ALPHA,
	MATERIAL_USE_SPECULAR = MATERIAL_USE_FIRST + CHANNEL_SPECULAR,
	MATERIAL_USE_SPECULARCOLOR = MATERIAL_USE_FIRST + CHANNEL_SPECULARCOLOR,
	MATERIAL_USE_DISPLACEMENT = MATERIAL_USE_FIRST + CHANNEL_DISPLACEMENT,
	MATERIAL_USE_NORMAL = MATERIAL_USE_FIRST + CHANNEL_NORMAL,

	MATERIAL_TRANSPARENCY_REFRACTION = 1005,
	MATERIAL_BUMP_STRENGTH = 1009,
	MATERIAL_ALPHA_SOFT = 1014,
	MATERIAL_SPECULAR_WIDTH = 1016,
	MATERIAL_SPECULAR_HEIGHT = 1017,
	MATERIAL_DISPLACEMENT_STRENGTH = 1025,
	MATERIAL_ILLUMINATION_MODEL = 1134,
	MATERIAL_COLOR_COLOR = 2100,
	MATERIAL_COLOR_BRIGHTNESS = 2101,
	MATERIAL_LUMINANCE_COLOR = 2300,
	MATERIAL_LUMINANCE_BRIGHTNESS = 2301,
	MATERIAL_TRANSPARENCY_COLOR = 2400,
	MATERIAL_TRANSPARENCY_BRIGHTNESS = 2401,
	MATERIAL_REFLECTION_BRIGHTNESS = 2501,
	MATERIAL_COLOR_SHADER = 8000,
	MATERIAL_LUMINANCE_SHADER = 8002,
	MATERIAL_BUMP_SHADER = 8006,
	MATERIAL_ALPHA_SHADER = 8007,
	MATERIAL_SPECULAR_COLOR_SHADER = 8008,
	MATERIAL_DISPLACEMENT_SHADER = 8009,
	MATERIAL_NORMAL_SHADER = 8012,
	MATERIAL_TRANSPARENCY_DISPERSION = 8020,
	MATERIAL_REFLECTION_DISPERSION = 8021,
};

// What a new standard material holds: colour and specular channels on,
// the colour a light grey, brightnesses 1, the strengths of the
// application's new material, no shaders.
void SetStandardMaterialDefaults(BaseContainer& data);

// A material of the document's material list; texture tags link to one.
class BaseMaterial : public TypedList2D<BaseMaterial>
{
public:
	explicit BaseMaterial(int32_t type);
	~BaseMaterial() override;

	// A free material of the given type with its defaults; null when the
	// type is neither the host's material nor a registered material plug-in.
	static BaseMaterial* Alloc(int32_t type) { return InitOrFree(new BaseMaterial(type), NodeClass::Material); }

	bool IsInstanceOf(int32_t id) const override { return id == Mbase || BaseList2D::IsInstanceOf(id); }

	// Whether a channel (CHANNEL_) of the standard material is on; false
	// for other materials.
	bool GetChannelState(int32_t channel) const;

	// A free copy with the name, parameters, layer and the shaders the
	// material owns, its links to them pointing to the copies; the plug-in's
	// data starts from its Init. Null when the type is no longer known.
	BaseMaterial* GetClone() const;

	// The host's own render, through the plug-in's MaterialData; a
	// material without one needs no preparing and leaves vd as it is.
	INITRENDERRESULT InitRender(const InitRenderStruct& irs);
	void FreeRender();
	void CalcSurface(VolumeData* vd);
	void CalcTransparency(VolumeData* vd);

	// Draws the material's viewport image anew, as the application does
	// when the material changes, EDITOR_IMAGE_SIZE square: a plug-in
	// material draws it (InitGLImage); the host's own material is its
	// colour times brightness. False, keeping no image, when the plug-in
	// could not draw it.
	bool Update(BaseDocument* doc);
	// The image of the last Update; null before.
	const BaseBitmap* GetEditorImage() const { return editorImage.get(); }

private:
	std::unique_ptr<BaseBitmap> editorImage;
};

// The side of the square viewport image of a material, in pixels.
enum
{
	EDITOR_IMAGE_SIZE = 64,
};
