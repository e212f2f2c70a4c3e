#pragma once

#include "c4d/base_object.h"

// The switches of a layer that the export reads: whether the layer's objects
// are rendered and shown in the editor.
struct LayerData
{
	bool render = true;
	bool view = true;
};

// A layer of the document's layer list; objects link to one.
class LayerObject : public TypedList2D<LayerObject>
{
public:
	LayerObject() : TypedList2D(Olayer) {}

	static LayerObject* Alloc() { return new LayerObject(); }

	const LayerData& GetLayerData() const { return layerData; }
	void SetLayerData(const LayerData& data) { layerData = data; }

private:
	LayerData layerData;
};
