#pragma once

#include "c4d/base_list.h"
#include "c4d/channel_data.h"

#include <memory>

class BaseBitmap;

// The host's own shader types that documents and the plug-in use.
enum
{
	// A single colour.
	Xcolor = 5832,
	// An image file, sampled over the UV square.
	Xbitmap = 5833,
};

// Parameters of the host's shaders.
enum
{
	// Xbitmap: the image file (a filename).
	BITMAPSHADER_FILENAME = 1000,
	// Xcolor: the colour (a vector).
	COLORSHADER_COLOR = 1000,
};

// A shader: a texture that a material channel (or another shader) links to.
// Shaders belong to the node that uses them (BaseList2D::InsertShader); the
// shaders a shader owns are its children, so layer-like shaders nest.
class BaseShader : public TypedList2D<BaseShader>
{
public:
	using TypedList2D::TypedList2D;
	~BaseShader() override;

	// A free shader of the given type with its defaults; null when the type
	// is neither one of the host's shaders nor a registered shader plug-in.
	static BaseShader* Alloc(int32_t type);

	bool IsInstanceOf(int32_t id) const override { return id == Xbase || BaseList2D::IsInstanceOf(id); }

	// A free copy with name, parameters and the shaders it owns, as
	// BaseMaterial::GetClone.
	BaseShader* GetClone() const;

	// The render calls as the host makes them: a plug-in shader answers
	// through its ShaderData; the host's colour shader gives its colour.
	// The host's bitmap shader loads its picture in InitRender (a relative
	// file name beside the document; INITRENDERRESULT_ASSETMISSING when
	// there is no file to load, INITRENDERRESULT_UNKNOWNERROR when it holds
	// no picture that can be read), samples it as tiles over the UV square
	// (v = 0 the top row; each point takes the pixel whose area holds it, in
	// components from 0 to 1) and drops it in FreeRender. Sample may be
	// called from several threads between InitRender and FreeRender.
	INITRENDERRESULT InitRender(const InitRenderStruct& irs);
	void FreeRender();
	Vector Sample(ChannelData* cd);
	// The SHADERINFO_ bits of a plug-in shader; 0 for the host's own.
	int32_t GetRenderInfo();

protected:
	// The plug-in's data when it is a shader plug-in's; null otherwise.
	ShaderData* shaderData() const;

	bool ownsShadersAsChildren() const override { return true; }

private:
	INITRENDERRESULT loadPicture(const InitRenderStruct& irs);
	Vector samplePicture(const ChannelData& cd) const;

	// The bitmap shader's picture from InitRender to FreeRender.
	std::unique_ptr<BaseBitmap> picture;
};
