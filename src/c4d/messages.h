#pragma once

#include <cstdint>

class BaseList2D;
class BaseMaterial;
class BaseShader;
class GeListNode;

// The node messages that the plug-in's nodes answer, by the application's numbers.
enum
{
	// A node's data changed.
	MSG_UPDATE = 5,
	// A button of the node's description was pressed; the data is a
	// DescriptionCommand.
	MSG_DESCRIPTION_COMMAND = 18,
	// The attribute manager checks the node's values after a change.
	MSG_DESCRIPTION_VALIDATE = 20,
	// A custom gadget of the description is about to be shown and asks for
	// fresh data; the data is a DescriptionCommand naming the gadget.
	MSG_DESCRIPTION_GADGET_REFRESH = 27,
	// A material changed; materials that use it redraw.
	MSG_MATERIAL_CHANGED = 31,
	// Data null: mark every material the node uses with BIT_MATMARK. Data a
	// MarkMaterials: replace the material omat by nmat wherever the node
	// links to it.
	MSG_MULTI_MARKMATERIALS = 0x40000004,
};

// The data of MSG_DESCRIPTION_COMMAND and MSG_DESCRIPTION_GADGET_REFRESH:
// the parameter the message is about.
struct DescriptionCommand
{
	int32_t id = 0;
};

// The data of MSG_MULTI_MARKMATERIALS when a material is being replaced.
struct MarkMaterials
{
	BaseMaterial* omat = nullptr;
	BaseMaterial* nmat = nullptr;
	BaseList2D* user = nullptr;
};

// What a node does with a message for the shader it links to: hands it on
// to the shader (and the shader's plug-in), so that linked shaders take
// part in the host's shader menus and tree. True when there is no shader.
bool HandleShaderMessage(GeListNode* node, BaseShader* shader, int32_t type, void* data);
