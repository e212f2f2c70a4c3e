#pragma once

#include "c4d/channel_data.h"

#include <cstdint>

class BaseBitmap;
class BaseContainer;
class BaseShader;
class BaseThread;
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

class BaseDraw;
class BaseDrawHelp;
class BaseObject;
class BaseTag;
class HierarchyHelp;

// The passes of the editor's drawing: objects draw their lines and polygons
// in DRAWPASS_OBJECT, the host's pass 0. What a Draw call answers.
enum DRAWPASS
{
	DRAWPASS_OBJECT = 0,
	DRAWPASS_BOX = 1,
	DRAWPASS_HANDLES = 2,
	DRAWPASS_HIGHLIGHTS = 3,
};
enum DRAWRESULT
{
	DRAWRESULT_ERROR = 0,
	DRAWRESULT_OK = 1,
	DRAWRESULT_SKIP = 2,
};

// The plug-in kinds whose nodes carry NodeData.
class TagData : public NodeData
{
public:
	// Draws the tag into the view bd, once per redraw, op being the tag's
	// object; true (by default) when done.
	virtual bool Draw(BaseTag* tag, BaseObject* op, BaseDraw* bd, BaseDrawHelp* bh);
};

class ObjectData : public NodeData
{
public:
	// Draws the object into the view in one pass; DRAWRESULT_SKIP by default.
	virtual DRAWRESULT Draw(BaseObject* op, DRAWPASS pass, BaseDraw* bd, BaseDrawHelp* bh);
	// The centre and the half size of the object's box in its own
	// coordinates; both 0 by default.
	virtual void GetDimension(BaseObject* op, Vector* mp, Vector* rad);
	// The object a generator makes, for the host to keep as its cache; null
	// (by default) for none.
	virtual BaseObject* GetVirtualObjects(BaseObject* op, HierarchyHelp* hh);
};

struct VideoPostStruct;
class BaseVideoPost;

// A video post plug-in. During a render the host calls Execute several
// times, once per call kind (VIDEOPOSTCALL_) opening and once closing, in
// the order of render_document.h; the result is a RENDERRESULT, 0 (by
// default) being success.
class VideoPostData : public NodeData
{
public:
	virtual int32_t Execute(BaseVideoPost* node, VideoPostStruct* vps);
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

	// The host's own render: InitRender before the first CalcSurface, which
	// the render's threads may then call at once, FreeRender after the last.
	// By default the material needs nothing and leaves the answers of vd
	// as the renderer set them.
	virtual INITRENDERRESULT InitRender(BaseMaterial* mat, const InitRenderStruct& irs);
	virtual void FreeRender(BaseMaterial* mat);
	virtual void CalcSurface(BaseMaterial* mat, VolumeData* vd);
	virtual void CalcTransparency(BaseMaterial* mat, VolumeData* vd);

	// Draws the material's image for the editor's viewport into bmp, which
	// the host hands over at its texture size. False (by default) when it
	// could not; the host then shows the material's colour.
	virtual bool InitGLImage(BaseMaterial* mat, BaseDocument* doc, BaseThread* th, BaseBitmap* bmp);
};

// Makes the NodeData of a new node; registered once per plug-in type.
using DataAllocator = NodeData*();

// Bits of CommandData::GetState; 0 is a disabled command.
enum
{
	// The command can be chosen.
	CMD_ENABLED = 2,
	// The command shows a check mark.
	CMD_VALUE = 4,
};

// A command of a menu or a palette. The registry owns the one instance.
class CommandData
{
public:
	virtual ~CommandData() = default;

	// Runs the command on the active document; false on failure.
	virtual bool Execute(BaseDocument* doc);
	// How the menus show the command for the document: CMD_ENABLED and
	// CMD_VALUE bits. The host runs no command without CMD_ENABLED.
	// CMD_ENABLED by default.
	virtual int32_t GetState(BaseDocument* doc);
	// The application opens the dialogs of a saved layout: a command that
	// has one opens it; false when it has none.
	virtual bool RestoreLayout(void* secret);
};
