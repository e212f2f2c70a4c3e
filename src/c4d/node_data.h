#pragma once

#include "c4d/channel_data.h"

#include <cstdint>

class BaseContainer;
class BaseShader;
class BaseDocument;
class BaseMaterial;
class DescID;
class Description;
class GeData;
class GeListNode;

// The plug-in's part of a node of a registered plug-in type. The host makes
// one per node with the allocator the plug-in registered, calls Init right
// after the node is made (so Init sets the defaults that a document's values
// then override), and Free before the node goes away. The node owns it.
class NodeData
{
public:
	virtual ~NodeData() = default;

	// Sets the node's defaults; false makes the allocation fail.
	virtual bool Init(GeListNode* node);
	virtual void Free(GeListNode* node);
	// A message sent to the node; true when handled or nothing needed doing.
	virtual bool Message(GeListNode* node, int32_t type, void* data);

	// What the attribute manager shows of the node. The default loads the
	// description of the node's type and sets DESCFLAGS_DESC_LOADED in
	// flags, unless the flag is set already; false when it cannot be loaded.
	virtual bool GetDDescription(GeListNode* node, Description* description, int32_t& flags);
	// A parameter read; the plug-in sets DESCFLAGS_GET_PARAM_GET in flags
	// when it filled t_data itself, otherwise the host reads the container.
	// The default does nothing and returns true.
	virtual bool GetDParameter(GeListNode* node, const DescID& id, GeData& t_data, int32_t& flags);
	// A parameter write; the plug-in sets DESCFLAGS_SET_PARAM_SET in flags
	// when it stored t_data itself, otherwise the host writes the container.
	// The default does nothing and returns true.
	virtual bool SetDParameter(GeListNode* node, const DescID& id, const GeData& t_data, int32_t& flags);
	// Whether the parameter id, whose value is t_data and whose description
	// settings are itemdesc (null when it has none), can be edited now. The
	// default is true.
	virtual bool GetDEnabling(GeListNode* node, const DescID& id, const GeData& t_data, int32_t flags,
		const BaseContainer* itemdesc);
};

// The plug-in kinds whose nodes carry NodeData.
class TagData : public NodeData
{
};

class ObjectData : public NodeData
{
};

class VideoPostData : public NodeData
{
};

// A shader plug-in. Between InitRender and FreeRender the host may call
// Output from all of its render threads at once, so Output only reads what
// InitRender stored.
class ShaderData : public NodeData
{
public:
	// The SHADERINFO_ bits of the shader; 0 by default.
	virtual int32_t GetRenderInfo(BaseShader* sh);
	// Prepares the shader for sampling; INITRENDERRESULT_OK by default.
	virtual INITRENDERRESULT InitRender(BaseShader* sh, const InitRenderStruct& irs);
	virtual void FreeRender(BaseShader* sh);
	// The colour at the sample point; black by default.
	virtual Vector Output(BaseShader* sh, ChannelData* cd);
};

// Bits of MaterialData::GetRenderInfo: what the material asks of the host's renderer.
enum
{
	SHADERINFO_TRANSFORM = 0x00000004,
	SHADERINFO_BUMP_SUPPORT = 0x00000010,
	SHADERINFO_ALPHA_SUPPORT = 0x00000020,
};

// A material plug-in. The drawing and host-render operations of the
// application's table come with the host's images.
class MaterialData : public NodeData
{
public:
	// The SHADERINFO_ bits of the material; 0 by default.
	virtual int32_t GetRenderInfo(BaseMaterial* mat);
};

// Makes the NodeData of a new node; registered once per plug-in type.
using DataAllocator = NodeData*();

// A command of a menu or a palette. The registry owns the one instance.
class CommandData
{
public:
	virtual ~CommandData() = default;

	// Runs the command on the active document; false on failure.
	virtual bool Execute(BaseDocument* doc);
};
