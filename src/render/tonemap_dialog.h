#pragma once

#include "c4d/ge_dialog.h"
#include "c4d/node_data.h"
#include "c4d/vector_matrix.h"
#include "scene/math_types.h"

#include <cstdint>

// Gadgets of the tone mapping dialog (layout 6004).
enum
{
	DLG_TONEMAPPING = 6004,
	// The radio group of the tone mapper and its entries.
	TM_TYPE = 6007,
	TM_TYPE_REINHARD = 6008,
	TM_TYPE_LINEAR = 6012,
	TM_TYPE_CAMERA = 6014,
	TM_PRE_SCALE = 6009,
	TM_POST_SCALE = 6010,
	TM_BURN = 6011,
	TM_LINEAR_SCALE = 6013,
	// The camera response function: the index into the table of names.
	TM_RESPONSE = 6015,
	TM_FILM_ISO = 6016,
	TM_EV_ADJUST = 6017,
	// The white point preset, 0 for none, or an entry from 6020 to 6031.
	TM_WHITE_PRESET = 6019,
	TM_WHITE_PRESET_FIRST = 6020,
	TM_WHITE_PRESET_LAST = 6031,
	TM_WHITE_X = 6032,
	TM_WHITE_Y = 6033,
	// The group that holds the layer gadgets, rebuilt for each render.
	TM_LAYERS = 6034,
	TM_LAYER_LIST = 9660000,
	// Gadgets of layer i: these plus i.
	TM_LAYER_GROUP = 8660000,
	TM_LAYER_ENABLED = 7660000,
	TM_LAYER_COLOUR = 6660000,
};

// The camera response functions the renderer ships, the names of
// responseFunctionFile (export/camera_export.h): 58 files under
// "data/camera_response_functions/" of its directory.
const int32_t camera_response_function_count = 58;

// The white point of a preset entry; any entry without a pair of its own
// has that of 6023.
void whitePointOfPreset(int32_t entry, double& x, double& y);

// The scale of a light layer, in the renderer's XYZ, for a colour (linear
// sRGB) at a brightness: a white colour at brightness 1 gives (1, 1, 1) up to
// rounding.
Velorn::Vec3d layerScale(const Vector& colour, double brightness);

// The non-modal dialog that changes the tone mapping, the white point and
// the light layers' gains of the running in-host render. It keeps nothing of
// its own: it reads the scene nodes that the render holds in the shared
// render state and writes every change back at once, marking the nodes, so
// that the render loop tone maps again. Without a render its changes go
// nowhere. A timer keeps messages coming, so that the dialog follows a new
// render even while the user does nothing.
class TonemapDialog : public GeDialog
{
public:
	bool CreateLayout() override;
	bool InitValues() override;
	bool Command(int32_t id, const BaseContainer& msg) override;
	int32_t Message(const BaseContainer& msg, BaseContainer& result) override;

private:
	// The gadgets of each layer of the render's settings, in group 6034.
	void addSliderRow(const char* label, int32_t id);
	void buildLayerGadgets();
	// Writes the gadgets' values into the render's nodes, under the render
	// state's lock, and marks the nodes as changed.
	void applyValues();
	void setReal(int32_t id, double value);
};

// Command 1023599: opens the dialog.
class TonemapCommand : public CommandData
{
public:
	bool Execute(BaseDocument* doc) override;
	bool RestoreLayout(void* secret) override;
	TonemapDialog& dialog() { return dlg; }

private:
	TonemapDialog dlg;
};

bool RegisterTonemapCommand();

enum
{
	ID_TONEMAPPING = 1023599,
};
