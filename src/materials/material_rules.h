#pragma once

#include "c4d/base_container.h"
#include "c4d/base_document.h"
#include "c4d/base_material.h"

#include <cstdint>
#include <vector>

// The rules of the plug-in's material that do not depend on the attribute
// manager: which channel switches a kind sets, which switches and pages a
// kind shows, which parameters a linked shader overrides, and which other
// materials a material uses. The material plug-in, the import and the
// conversion share them.

// The kind switch rule: overwrites the channel switches of data with the
// default page set of kind; switches that the kind leaves alone keep their
// value. An unknown kind changes nothing and gives false.
bool applyKindSwitchRule(BaseContainer& data, int32_t kind);

// Whether the description shows the channel switch for kind.
bool isSwitchShown(int32_t switch_id, int32_t kind);

// A channel switch and the page (description group) it owns.
struct SwitchPage
{
	int32_t switch_id;
	int32_t page;
};
const std::vector<SwitchPage>& switchPages();
// Whether the page of a switch shows: a switch that data does not hold
// counts as on.
bool isPageShown(const BaseContainer& data, int32_t switch_id);

// The ids of the shader links of the material, in the order in which
// messages are handed to the linked shaders.
const std::vector<int32_t>& shaderLinkIds();
// The ids of the material links that a replacement of one material by
// another (MSG_MULTI_MARKMATERIALS) rewrites.
const std::vector<int32_t>& replaceableMaterialLinkIds();

// The generic channels of the coating and double sided kinds.
struct GenericChannel
{
	int32_t base;
	// The page the channel's entries sit in.
	int32_t page;
	bool spectrum;
};
const std::vector<GenericChannel>& genericChannels();

// The shader linked under id, or null.
BaseShader* linkedShader(const BaseContainer& data, int32_t id, const BaseDocument* doc);
// The texture test: a shader is linked under id and it is not one of the
// plug-in's own shaders, whose settings the texture parameters do not
// apply to.
bool hasForeignTexture(const BaseContainer& data, int32_t id, const BaseDocument* doc);
// Whether the attribute manager lets the user edit parameter id: false
// where a linked shader overrides the value, or where texture settings
// have no texture to act on.
bool isMaterialParameterEnabled(const BaseContainer& data, int32_t id, const BaseDocument* doc);

// The ids of the material links that the material's kind uses, in order:
// MAT_BLEND_A and MAT_BLEND_B for a blend, MAT_COAT_SUBSTRATE for a
// coating, the front and back materials for a double sided one,
// MAT_MEDIUM_SOURCE for the kinds with an internal medium while it is on,
// and MAT_BLEND_A again when the blend factor is on.
std::vector<int32_t> usedMaterialLinks(const BaseContainer& data);

// The cycle test: whether mat, through the links its kind uses and the
// links of the plug-in materials it reaches, meets target. A loop of links
// (a material that reaches itself) ends: each material is entered once.
bool materialReaches(BaseList2D* mat, const BaseList2D* target, const BaseDocument* doc);
