#include "render/tonemap_dialog.h"

#include "export/camera_export.h"
#include "host/plugin_globals.h"
#include "render/render_state.h"
#include "scene/render_setting_values.h"
#include "scene/scene_node_render_settings.h"
#include "scene/scene_node_tonemapping.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <mutex>
#include <string>
#include <vector>

namespace
{

const char* const response_dir = "data/camera_response_functions/";

// Ticks that keep messages coming while the user does nothing.
const int32_t message_period_ms = 100;

// A real gadget: its value when there is no node, the slider's range and
// step, and the range a typed value is held in.
struct RealGadget
{
	int32_t id;
	double fallback;
	double slider_min, slider_max, step;
	double min, max;
};

const RealGadget real_gadgets[] = {
	{TM_LINEAR_SCALE, 1.0, 0, 10, 0.1, 0, 1000000},
	{TM_PRE_SCALE, 4.0, 0, 10, 0.1, 0, 100000},
	{TM_POST_SCALE, 1.0, 0, 10, 0.1, 0, 100000},
	{TM_BURN, 6.0, 1.001, 10, 0.1, 1.001, 100000},
	{TM_FILM_ISO, 200, 0.001, 200, 1, 0.001, 100000},
	{TM_EV_ADJUST, 4.0, -10, 10, 0.1, -100000, 100000},
	{TM_WHITE_X, 0.333, 0.24, 0.46, 0.01, 0.24, 0.46},
	{TM_WHITE_Y, 0.333, 0.24, 0.46, 0.01, 0.24, 0.46},
};

const RealGadget& realGadget(int32_t id)
{
	return *std::find_if(std::begin(real_gadgets), std::end(real_gadgets), [&](const RealGadget& g) { return g.id == id; });
}

struct WhitePreset
{
	int32_t entry;
	const char* name;
	double x, y;
};

const WhitePreset white_presets[] = {
	{6020, "E", 0.33304, 0.33304},
	{6021, "D50", 0.34546, 0.35834},
	{6022, "D55", 0.33212, 0.3473},
	{6023, "D65", 0.31234, 0.3289},
	{6024, "D75", 0.299, 0.31464},
	{6025, "A", 0.44712, 0.4071},
	{6026, "B", 0.34822, 0.35144},
	{6027, "C", 0.31004, 0.31602},
	{6028, "9300 K", 0.28474, 0.29302},
	{6029, "F2", 0.37168, 0.3749},
	{6030, "F7", 0.3128, 0.3289},
	{6031, "F11", 0.38042, 0.37674},
};

struct Kind
{
	int32_t gadget;
	int32_t type;
	const char* name;
};

const Kind kinds[] = {
	{TM_TYPE_LINEAR, Velorn::SceneNodeTonemapping::Linear, "Linear"},
	{TM_TYPE_REINHARD, Velorn::SceneNodeTonemapping::Reinhard, "Reinhard"},
	{TM_TYPE_CAMERA, Velorn::SceneNodeTonemapping::CameraResponse, "Camera"},
};

std::string lowered(std::string text)
{
	std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return (char)std::tolower(c); });
	return text;
}

// The table's index of a response function path, as the node holds it
// (back or forward slashes, any case); -1 when it is not in the table.
int32_t responseIndex(const std::string& path)
{
	std::string name = path;
	std::replace(name.begin(), name.end(), '\\', '/');
	name = lowered(name);
	for(size_t at; (at = name.find(response_dir)) != std::string::npos;)
		name.erase(at, std::char_traits<char>::length(response_dir));
	for(int32_t i = 0; i < camera_response_function_count; ++i)
		if(lowered(responseFunctionFile(i)) == name)
			return i;
	return -1;
}

// The nodes of the shared render state; null where there is none.
struct RenderNodes
{
	Velorn::Reference<Velorn::SceneNodeRoot> root;
	Velorn::SceneNodeTonemapping* tonemap = nullptr;
	Velorn::SceneNodeRenderSettings* settings = nullptr;
};

// Call with the render state's lock held.
RenderNodes renderNodes()
{
	RenderNodes nodes;
	nodes.root = renderState().root;
	if(nodes.root.isNull())
		return nodes;
	nodes.tonemap = dynamic_cast<Velorn::SceneNodeTonemapping*>(nodes.root->getToneMappingNode().getPointer());
	nodes.settings = dynamic_cast<Velorn::SceneNodeRenderSettings*>(nodes.root->getRenderSettingsNode().getPointer());
	return nodes;
}

void markChanged(Velorn::SceneNode& node)
{
	node.setFlags(node.getFlags() | NODE_CHANGED);
}

// A 3 by 3 matrix in single precision, by rows.
struct Matrix3f
{
	float m[3][3];

	std::array<float, 3> apply(const std::array<float, 3>& v) const
	{
		std::array<float, 3> r{};
		for(int i = 0; i < 3; ++i)
			r[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
		return r;
	}

	// The inverse; false when there is none.
	bool inverse(Matrix3f& out) const
	{
		const float det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
			m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) + m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
		if(det == 0.0f)
			return false;
		for(int i = 0; i < 3; ++i)
			for(int j = 0; j < 3; ++j)
			{
				// The cofactor of (j, i), from the rows and columns that remain.
				const int r0 = (j + 1) % 3, r1 = (j + 2) % 3, c0 = (i + 1) % 3, c1 = (i + 2) % 3;
				out.m[i][j] = (m[r0][c0] * m[r1][c1] - m[r0][c1] * m[r1][c0]) / det;
			}
		return true;
	}
};

// Linear sRGB to CIE XYZ.
const Matrix3f srgb_to_xyz = {{{0.4124564f, 0.3575761f, 0.1804375f}, {0.2126729f, 0.7151522f, 0.0721750f},
	{0.0193339f, 0.1191920f, 0.9503041f}}};

} // namespace

void whitePointOfPreset(int32_t entry, double& x, double& y)
{
	for(const WhitePreset& preset : white_presets)
		if(preset.entry == entry)
		{
			x = preset.x;
			y = preset.y;
			return;
		}
	x = 0.31234;
	y = 0.3289;
}

Velorn::Vec3d layerScale(const Vector& colour, double brightness)
{
	Matrix3f inverse;
	if(!srgb_to_xyz.inverse(inverse))
		inverse = Matrix3f{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
	std::array<float, 3> w = inverse.apply({1.0f, 1.0f, 1.0f});
	for(float& c : w)
		c = std::pow(c, 0.4545454680919647f);
	const std::array<float, 3> t = {(float)colour.x * w[0], (float)colour.y * w[1], (float)colour.z * w[2]};
	std::array<float, 3> l{};
	for(int i = 0; i < 3; ++i)
		l[i] = std::pow(t[i], 2.2f);
	const std::array<float, 3> xyz = srgb_to_xyz.apply(l);
	return Velorn::Vec3d(brightness * xyz[0], brightness * xyz[1], brightness * xyz[2]);
}

bool TonemapDialog::CreateLayout()
{
	SetTitle(String("Velorn Tonemapping"));
	GroupBegin(0, BFH_SCALEFIT, 1, 0, String("Tone Mapping"));
	AddRadioGroup(TM_TYPE, BFH_LEFT, 3);
	for(const Kind& kind : kinds)
		AddChild(TM_TYPE, kind.gadget, String(kind.name));
	GroupBegin(0, BFH_SCALEFIT, 2, 0, String("Linear"));
	addSliderRow("Scale", TM_LINEAR_SCALE);
	GroupEnd();
	GroupBegin(0, BFH_SCALEFIT, 2, 0, String("Reinhard"));
	addSliderRow("Pre Scale", TM_PRE_SCALE);
	addSliderRow("Post Scale", TM_POST_SCALE);
	addSliderRow("Burn", TM_BURN);
	GroupEnd();
	GroupBegin(0, BFH_SCALEFIT, 2, 0, String("Camera"));
	AddStaticText(0, BFH_LEFT, 0, 0, String("Response Function"));
	AddComboBox(TM_RESPONSE, BFH_SCALEFIT);
	addSliderRow("Film ISO", TM_FILM_ISO);
	addSliderRow("EV Adjust", TM_EV_ADJUST);
	GroupEnd();
	GroupBegin(0, BFH_SCALEFIT, 2, 0, String("White Point"));
	AddStaticText(0, BFH_LEFT, 0, 0, String("Preset"));
	AddComboBox(TM_WHITE_PRESET, BFH_SCALEFIT);
	AddChild(TM_WHITE_PRESET, 0, String("None"));
	for(const WhitePreset& preset : white_presets)
		AddChild(TM_WHITE_PRESET, preset.entry, String(preset.name));
	addSliderRow("x", TM_WHITE_X);
	addSliderRow("y", TM_WHITE_Y);
	GroupEnd();
	GroupEnd();
	GroupBegin(TM_LAYERS, BFH_SCALEFIT, 1, 0, String("Light Layers"));
	GroupEnd();
	buildLayerGadgets();
	SetTimer(message_period_ms);
	return true;
}

// One row of a two-column group: the label, then the slider.
void TonemapDialog::addSliderRow(const char* label, int32_t id)
{
	AddStaticText(0, BFH_LEFT, 0, 0, String(label));
	AddEditSlider(id, BFH_SCALEFIT);
}

void TonemapDialog::buildLayerGadgets()
{
	std::vector<String> names;
	{
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		const RenderNodes nodes = renderNodes();
		if(nodes.settings)
			for(const auto& layer : nodes.settings->layer_settings)
				names.push_back(String(layer.nonNull() ? layer->name.str() : std::string()));
	}
	LayoutFlushGroup(TM_LAYERS);
	// The realtime edition renders its layers as they are.
	if(!realtime_edition)
	{
		GroupBegin(TM_LAYER_LIST, BFH_SCALEFIT, 1, 0, String());
		for(int32_t i = 0; i < (int32_t)names.size(); ++i)
		{
			GroupBegin(TM_LAYER_GROUP + i, BFH_SCALEFIT, 2, 0, names[i], BORDER_GROUP_IN);
			AddCheckbox(TM_LAYER_ENABLED + i, BFH_LEFT, 0, 0, String("Enabled"));
			SetBool(TM_LAYER_ENABLED + i, true);
			AddColorField(TM_LAYER_COLOUR + i, BFH_SCALEFIT);
			SetColorField(TM_LAYER_COLOUR + i, Vector(1, 1, 1), 1.0, 5.0);
			GroupEnd();
		}
		GroupEnd();
	}
	LayoutChanged(TM_LAYERS);
}

void TonemapDialog::setReal(int32_t id, double value)
{
	const RealGadget& g = realGadget(id);
	SetFloat(id, value, g.slider_min, g.slider_max, g.step, g.min, g.max);
}

bool TonemapDialog::InitValues()
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	const RenderNodes nodes = renderNodes();

	if(!nodes.tonemap)
		SetInt32(TM_TYPE, TM_TYPE_REINHARD);
	else
		for(const Kind& kind : kinds)
			if(kind.type == nodes.tonemap->tone_mapping_type)
				SetInt32(TM_TYPE, kind.gadget);
	const Velorn::SceneNodeTonemapping* t = nodes.tonemap;
	for(const RealGadget& g : real_gadgets)
		setReal(g.id, g.fallback);
	if(t)
	{
		setReal(TM_LINEAR_SCALE, t->linear_scale);
		setReal(TM_PRE_SCALE, t->pre_scale);
		setReal(TM_POST_SCALE, t->post_scale);
		setReal(TM_BURN, t->burn);
		setReal(TM_FILM_ISO, t->film_iso);
		setReal(TM_EV_ADJUST, t->ev_adjust);
	}

	FreeChildren(TM_RESPONSE);
	for(int32_t i = 0; i < camera_response_function_count; ++i)
		AddChild(TM_RESPONSE, i, String(responseFunctionFile(i)));
	// A path that is not in the table leaves the entry as it was.
	const int32_t response = t ? responseIndex(t->response_function_path.str()) : -1;
	if(response >= 0)
		SetInt32(TM_RESPONSE, response);

	const bool white = nodes.settings && nodes.settings->white_point.nonNull();
	setReal(TM_WHITE_X, white ? nodes.settings->white_point->x : 0.333);
	setReal(TM_WHITE_Y, white ? nodes.settings->white_point->y : 0.333);
	SetInt32(TM_WHITE_PRESET, 0);
	return true;
}

bool TonemapDialog::Command(int32_t id, const BaseContainer&)
{
	if(id == TM_WHITE_PRESET)
	{
		int32_t entry = 0;
		GetInt32(TM_WHITE_PRESET, entry);
		double x, y;
		whitePointOfPreset(entry, x, y);
		setReal(TM_WHITE_X, x);
		setReal(TM_WHITE_Y, y);
	}
	else if(id == TM_WHITE_X || id == TM_WHITE_Y)
		SetInt32(TM_WHITE_PRESET, 0);
	applyValues();
	return true;
}

void TonemapDialog::applyValues()
{
	RenderState& state = renderState();
	std::lock_guard<std::mutex> guard(state.lock);
	const RenderNodes nodes = renderNodes();
	if(nodes.root.isNull())
		return;

	if(Velorn::SceneNodeTonemapping* t = nodes.tonemap)
	{
		int32_t gadget = 0;
		GetInt32(TM_TYPE, gadget);
		for(const Kind& kind : kinds)
			if(kind.gadget == gadget)
				t->tone_mapping_type = kind.type;
		GetFloat(TM_LINEAR_SCALE, t->linear_scale);
		GetFloat(TM_PRE_SCALE, t->pre_scale);
		GetFloat(TM_POST_SCALE, t->post_scale);
		GetFloat(TM_BURN, t->burn);
		int32_t response = -1;
		GetInt32(TM_RESPONSE, response);
		if(response >= 0 && response < camera_response_function_count)
			t->response_function_path = Velorn::String(std::string(response_dir) + responseFunctionFile(response));
		GetFloat(TM_FILM_ISO, t->film_iso);
		GetFloat(TM_EV_ADJUST, t->ev_adjust);
		markChanged(*t);
	}

	Velorn::SceneNodeRenderSettings* settings = nodes.settings;
	if(!settings)
		return;
	double x = 0, y = 0;
	GetFloat(TM_WHITE_X, x);
	GetFloat(TM_WHITE_Y, y);
	settings->setWhitePoint(x, y);
	if(!realtime_edition)
	{
		Velorn::SceneNodeRenderSettings::LayerVector layers;
		for(size_t i = 0; i < settings->layer_settings.size(); ++i)
		{
			const int32_t n = (int32_t)i;
			bool enabled = true;
			Vector colour(1, 1, 1);
			double brightness = 1;
			GetBool(TM_LAYER_ENABLED + n, enabled);
			GetColorField(TM_LAYER_COLOUR + n, colour, brightness);
			const Velorn::Vec3d scale = enabled ? layerScale(colour, brightness) : Velorn::Vec3d(0, 0, 0);
			const auto& former = settings->layer_settings[i];
			layers.push_back(new Velorn::LayerSetting(former.nonNull() ? former->name : Velorn::String(), scale, 1));
		}
		settings->setLayers(layers);
	}
	markChanged(*settings);
}

int32_t TonemapDialog::Message(const BaseContainer& msg, BaseContainer& result)
{
	RenderState& state = renderState();
	if(state.new_render)
	{
		bool rebuild = false;
		{
			std::lock_guard<std::mutex> guard(state.lock);
			rebuild = state.new_render != 0;
			state.new_render = 0;
		}
		if(rebuild)
		{
			InitValues();
			buildLayerGadgets();
		}
	}
	return GeDialog::Message(msg, result);
}

bool TonemapCommand::Execute(BaseDocument*)
{
	return dlg.Open(DLG_TYPE_ASYNC, ID_TONEMAPPING, -1, -1, 500, 100);
}

bool TonemapCommand::RestoreLayout(void* secret)
{
	return dlg.RestoreLayout(ID_TONEMAPPING, secret);
}

bool RegisterTonemapCommand()
{
	return registerRenderCommand(ID_TONEMAPPING, "Velorn Interactive Tonemapping Dialog", "Velorn Tonemapping",
		"tonemapping.tif", new TonemapCommand());
}
