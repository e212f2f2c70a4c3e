#pragma once

#include "c4d/node_data.h"

#include <cstdint>

class BaseContainer;

// The plug-in's material: one class for all ten material kinds of the
// renderer. The kind is a cycle parameter; every other parameter exists for
// every kind and is only shown or hidden, so that a user may switch kinds
// without losing values. The channel switches decide which pages show.
//
// The render-time state (the samplers of the albedo and emission shaders,
// the cached kind and the refraction and reflection flags, the view IOR)
// comes with the host render and the viewport image; here are the view
// colours that the factory clears, the change counter and the preview flag.
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

	// Raised by every parameter write and every update message, so that the
	// preview knows when to render again.
	uint32_t GetDirtyCount() const { return dirtyCount; }
	bool HasPreviewFailed() const { return previewFailed != 0; }

	// Colour and emission of the viewport and the host render, each colour
	// times scale.
	float viewColour[3];
	float viewEmission[3];

private:
	VelornMaterial() = default;

	// Runs the kind switch rule when the kind differs from the one the
	// switches were last set for.
	void validateKind(BaseContainer& data);
	// What a document's material does when a material changes: those that
	// use this one are marked changed.
	void markUsers(GeListNode* node);
	// The MSG_MULTI_MARKMATERIALS message: marks or replaces the materials
	// this one links to.
	void markMaterials(GeListNode* node, void* data);

	uint32_t dirtyCount = 0;
	uint8_t previewFailed;
	// The kind the channel switches were last set for; 0 while unknown (a
	// new node, whose container a document's values may still replace):
	// the switches are then taken as those of the stored kind.
	int32_t switchKind = 0;
};

bool RegisterVelornMaterial();
