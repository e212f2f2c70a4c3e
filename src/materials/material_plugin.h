#pragma once

#include "c4d/node_data.h"

#include <cstdint>
#include <memory>

class BaseContainer;

// The plug-in's material: one class for all ten material kinds of the
// renderer. The kind is a cycle parameter; every other parameter exists for
// every kind and is only shown or hidden, so that a user may switch kinds
// without losing values. The channel switches decide which pages show.
//
// For the host's own render and the viewport the material is a coarse
// stand-in of what the renderer makes of it: a colour (or the albedo
// shader), an emission, reflection and refraction by kind.
class VelornMaterial : public MaterialData
{
public:
	static NodeData* Alloc();

	bool Init(GeListNode* node) override;
	bool Message(GeListNode* node, int32_t type, void* data) override;
	bool GetDDescription(GeListNode* node, Description* description, int32_t& flags) override;
	bool GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags) override;
	bool SetDParameter(GeListNode* node, const DescID& id, const GeData& t_data, int32_t& flags) override;
	bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc) override;
	int32_t GetRenderInfo(BaseMaterial* mat) override;
	INITRENDERRESULT InitRender(BaseMaterial* mat, const InitRenderStruct& irs) override;
	void FreeRender(BaseMaterial* mat) override;
	void CalcSurface(BaseMaterial* mat, VolumeData* vd) override;
	void CalcTransparency(BaseMaterial* mat, VolumeData* vd) override;
	bool InitGLImage(BaseMaterial* mat, BaseDocument* doc, BaseThread* th, BaseBitmap* bmp) override;

	// Raised by every parameter write and every update message, so that the
	// preview knows when to render again.
	uint32_t GetDirtyCount() const { return dirtyCount; }
	bool HasPreviewFailed() const { return previewFailed != 0; }

	// Colour and emission of the viewport and the host render, each colour
	// times scale.
	float viewColour[3];
	float viewEmission[3];

private:
	// A shader channel as the host render samples it: the linked shader and
	// the texture's scale terms, the value being a t^2 + b t + c of the
	// shader's t.
	struct Sampler
	{
		BaseShader* shader;
		float a, b, c;
	};

	VelornMaterial() = default;

	// The sampler of a channel whose link holds a shader, initialised for
	// the render; null for no shader. result gets the shader's answer.
	static std::unique_ptr<Sampler> makeSampler(
		const BaseContainer& data, int32_t link, int32_t first_term, const InitRenderStruct& irs, INITRENDERRESULT& result);
	static Vector sample(const Sampler& sampler, VolumeData* vd);
	// The reflected and the transmitted parts of CalcSurface.
	Vector reflection(VolumeData* vd) const;
	void refract(VolumeData* vd) const;

	// Runs the kind switch rule when the kind differs from the one the
	// switches were last set for.
	void validateKind(BaseContainer& data);
	// What a document's material does when a material changes: those that
	// use this one are marked changed.
	void markUsers(GeListNode* node);
	// The MSG_MULTI_MARKMATERIALS message: marks or replaces the materials
	// this one links to.
	void markMaterials(GeListNode* node, void* data);

	// Written by InitRender and FreeRender only; the render's threads read
	// them without a lock in between.
	std::unique_ptr<Sampler> albedoSampler;
	std::unique_ptr<Sampler> emissionSampler;
	int32_t materialType = 0;
	bool refractive = false;
	bool reflective = false;
	float viewIor = 1.0f;

	uint32_t dirtyCount = 0;
	uint8_t previewFailed;
	// The kind the channel switches were last set for; 0 while unknown (a
	// new node, whose container a document's values may still replace):
	// the switches are then taken as those of the stored kind.
	int32_t switchKind = 0;
};

bool RegisterVelornMaterial();
