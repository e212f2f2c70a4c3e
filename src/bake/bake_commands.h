#pragma once

class BaseDocument;
class CommandData;
class TextureTag;

// The command ids.
enum
{
	ID_BAKE_UVW_TAG_COMMAND = 1024339,
	ID_BAKE_MATERIAL_COMMAND = 1024338,
};

// The texture tag that "Bake UVW Tag of Velorn Material" applies to: the
// one selected tag of the document, when it is a texture tag of the
// plug-in material on a polygon object; null otherwise.
TextureTag* selectedBakeTag(BaseDocument* doc);
// The texture tag that "Bake Material on Object" applies to: the first
// texture tag of the plug-in material on the one selected object, when that
// is a polygon object; null otherwise.
TextureTag* objectBakeTag(BaseDocument* doc);

// The commands themselves, as the registrations below make them.
CommandData* AllocBakeUVWTagCommand();
CommandData* AllocBakeMaterialCommand();

// "Bake UVW Tag of Velorn Material" opens the bake dialog for the selected
// tag; "Bake Material on Object" for the selected object's first tag of the
// plug-in material. Each is registered under its resource name, and skipped
// when the resource has none.
bool RegisterBakeUVWTagCommand();
bool RegisterBakeMaterialCommand();
