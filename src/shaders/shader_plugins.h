#pragma once

#include "c4d/base_shader.h"
#include "c4d/node_data.h"
#include "c4d/vector_matrix.h"

#include <cstdint>
#include <string>

// What every shader of the plug-in offers beyond the host's ShaderData: its
// expression in the renderer's shader language, so that the export can
// hand the renderer the same look that Output gives in the host.
class VslShaderData : public ShaderData
{
public:
	// Remembers the shader, which getShaderText reads.
	bool Init(GeListNode* node) override;

	// The expression of the shader for an output kind (VSL_OUTPUT_VECTOR or
	// anything else for real). It reads the shader's parameters afresh, so
	// it works without InitRender, on the export thread.
	virtual std::string getShaderText(int32_t outputKind) = 0;

protected:
	// The shader this data belongs to; null when the data was never given
	// a node, in which case the text is a constant.
	BaseShader* shader = nullptr;
};

// Free shader text: the user writes the whole program in 1405 and names up
// to three image files whose texture indices the text refers to by marks.
// In the host it has no look of its own and samples white.
class VslFreeTextShader : public VslShaderData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	// While the text is still the default and the shader sits in one of
	// the plug-in's materials, writes the starter program of the channel
	// whose link holds it.
	bool Message(GeListNode* node, int32_t type, void* data) override;
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	Vector Output(BaseShader* sh, ChannelData* cd) override;
	// The program stands alone and cannot be part of an expression: inside
	// a blend it counts as an empty input.
	std::string getShaderText(int32_t outputKind) override;
};

// Plain or fractal gradient noise over UV or over the 3-D surface point,
// either grey or a mix of two colours.
class VslNoiseShader : public VslShaderData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc) override;
	int32_t GetRenderInfo(BaseShader* sh) override;
	INITRENDERRESULT InitRender(BaseShader* sh, const InitRenderStruct& irs) override;
	Vector Output(BaseShader* sh, ChannelData* cd) override;
	std::string getShaderText(int32_t outputKind) override;

private:
	bool load(BaseShader* sh);

	int32_t kind = 0;
	int32_t space = 0;
	int32_t outputMode = 0;
	Vector scale;
	double gain = 0;
	// Metres per host unit of the shader's document, as the export scales
	// positions.
	double documentScale = 1;
	Vector colourA;
	Vector colourB;
};

// Adds, subtracts or multiplies two of the plug-in's shaders, times a gain.
class VslBlendShader : public VslShaderData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	int32_t GetRenderInfo(BaseShader* sh) override;
	INITRENDERRESULT InitRender(BaseShader* sh, const InitRenderStruct& irs) override;
	void FreeRender(BaseShader* sh) override;
	Vector Output(BaseShader* sh, ChannelData* cd) override;
	std::string getShaderText(int32_t outputKind) override;

private:
	// One input: the linked shader and its data, both null when the link
	// is empty or names a shader that is not one of the plug-in's.
	struct Input
	{
		BaseShader* shader = nullptr;
		VslShaderData* data = nullptr;
	};

	bool load(BaseShader* sh);

	int32_t operation = 0;
	double gain = 0;
	Input inputs[2];
	// Set while this blend writes its text, so that links that lead back
	// to it end in an empty input instead of endless text.
	bool writingText = false;
};

// A blend of two colours along u, along v or outwards from the UV centre.
class VslGradientShader : public VslShaderData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	int32_t GetRenderInfo(BaseShader* sh) override;
	INITRENDERRESULT InitRender(BaseShader* sh, const InitRenderStruct& irs) override;
	Vector Output(BaseShader* sh, ChannelData* cd) override;
	std::string getShaderText(int32_t outputKind) override;

private:
	bool load(BaseShader* sh);

	int32_t direction = 0;
	double gain = 0;
	Vector colourA;
	Vector colourB;
};

// A blend of two colours by how squarely the view meets the surface.
class VslNormalShader : public VslShaderData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	int32_t GetRenderInfo(BaseShader* sh) override;
	INITRENDERRESULT InitRender(BaseShader* sh, const InitRenderStruct& irs) override;
	Vector Output(BaseShader* sh, ChannelData* cd) override;
	std::string getShaderText(int32_t outputKind) override;

private:
	bool load(BaseShader* sh);

	Vector colourA;
	Vector colourB;
};

bool RegisterVslShader();
bool RegisterVslNoise();
bool RegisterVslBlend();
bool RegisterVslGradient();
bool RegisterVslNormal();
