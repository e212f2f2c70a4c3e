#include "cli/tonemap_changes.h"

#include "c4d/command_runner.h"
#include "c4d/events.h"
#include "c4d/ge_dialog.h"
#include "c4d/plugin_registry.h"
#include "export/camera_export.h"
#include "render/render_state.h"
#include "render/tonemap_dialog.h"
#include "support/exceptions.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <mutex>

const char* const TonemapChanges::help =
	"Change the tone mapping of the in-host render through the tone mapping dialog, as KEY=VALUE, once per change: "
	"type=linear|reinhard|camera, scale, pre_scale, post_scale, burn, film_iso, ev_adjust (or exposure), "
	"response=FILE (a camera response function), white_x, white_y, white_preset=0|6020..6031, "
	"layer<i>_gain=r,g,b[,brightness], layer<i>_enabled=on|off. "
	"Example: --tonemap type=camera --tonemap ev_adjust=-1 --tonemap layer0_gain=1,0.8,0.6,1";

namespace
{

std::string lowered(std::string text)
{
	std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return (char)std::tolower(c); });
	return text;
}

[[noreturn]] void refuse(const std::string& setting, const std::string& why)
{
	throw Velorn::VelornException("--tonemap '" + setting + "': " + why);
}

bool isNumber(const std::string& text)
{
	char* end = nullptr;
	std::strtod(text.c_str(), &end);
	return !text.empty() && end == text.c_str() + text.size();
}

// The gadgets that take a number, by key.
const std::pair<const char*, int32_t> real_keys[] = {{"scale", TM_LINEAR_SCALE}, {"pre_scale", TM_PRE_SCALE},
	{"post_scale", TM_POST_SCALE}, {"burn", TM_BURN}, {"film_iso", TM_FILM_ISO}, {"ev_adjust", TM_EV_ADJUST},
	{"exposure", TM_EV_ADJUST}, {"white_x", TM_WHITE_X}, {"white_y", TM_WHITE_Y}};

// layer<i>_<what>: the layer's index; false when key is no such key.
bool layerKey(const std::string& key, const std::string& what, int32_t& index)
{
	const std::string suffix = "_" + what;
	if(key.compare(0, 5, "layer") != 0 || key.size() <= 5 + suffix.size() ||
		key.compare(key.size() - suffix.size(), suffix.size(), suffix) != 0)
		return false;
	const std::string digits = key.substr(5, key.size() - 5 - suffix.size());
	if(digits.size() > 5 || !std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isdigit(c); }))
		return false;
	index = std::atoi(digits.c_str());
	return true;
}

bool isColour(const std::string& value)
{
	size_t parts = 0;
	for(size_t start = 0;; ++parts)
	{
		const size_t comma = value.find(',', start);
		if(!isNumber(value.substr(start, comma == std::string::npos ? std::string::npos : comma - start)))
			return false;
		if(comma == std::string::npos)
			break;
		start = comma + 1;
	}
	return parts == 2 || parts == 3;
}

} // namespace

DialogAction TonemapChanges::actionOf(const std::string& setting)
{
	const size_t equals = setting.find('=');
	if(equals == std::string::npos)
		refuse(setting, "a change is KEY=VALUE");
	const std::string key = lowered(setting.substr(0, equals));
	const std::string value = setting.substr(equals + 1);
	auto set = [](int32_t id, const std::string& text) { return DialogAction::set(id, String(text)); };

	if(key == "type")
	{
		const std::pair<const char*, int32_t> types[] = {
			{"linear", TM_TYPE_LINEAR}, {"reinhard", TM_TYPE_REINHARD}, {"camera", TM_TYPE_CAMERA}};
		for(const auto& type : types)
			if(lowered(value) == type.first)
				return set(TM_TYPE, std::to_string(type.second));
		refuse(setting, "the type is linear, reinhard or camera");
	}
	for(const auto& real : real_keys)
		if(key == real.first)
		{
			if(!isNumber(value))
				refuse(setting, "'" + value + "' is not a number");
			return set(real.second, value);
		}
	if(key == "response")
	{
		for(int32_t i = 0; i < camera_response_function_count; ++i)
			if(lowered(responseFunctionFile(i)) == lowered(value))
				return set(TM_RESPONSE, std::to_string(i));
		refuse(setting, "'" + value + "' is no camera response function of the renderer (such as dscs315.txt)");
	}
	if(key == "white_preset")
	{
		const int32_t entry = isNumber(value) ? std::atoi(value.c_str()) : -1;
		if(value != std::to_string(entry) || (entry != 0 && (entry < TM_WHITE_PRESET_FIRST || entry > TM_WHITE_PRESET_LAST)))
			refuse(setting, "the preset is 0 (none) or an entry from 6020 to 6031");
		return set(TM_WHITE_PRESET, value);
	}
	int32_t layer = 0;
	if(layerKey(key, "gain", layer))
	{
		if(!isColour(value))
			refuse(setting, "the gain is r,g,b or r,g,b,brightness");
		return set(TM_LAYER_COLOUR + layer, value);
	}
	if(layerKey(key, "enabled", layer))
	{
		const std::string v = lowered(value);
		if(v != "on" && v != "off")
			refuse(setting, "a layer is enabled on or off");
		return set(TM_LAYER_ENABLED + layer, v);
	}
	refuse(setting, "unknown key '" + key + "'");
}

TonemapChanges::TonemapChanges(const std::vector<std::string>& settings_) : settings(settings_)
{
	for(const std::string& setting : settings)
		actions.push_back(actionOf(setting));
}

void TonemapChanges::open()
{
	const PluginRecord* record = PluginRegistry::get().find(ID_TONEMAPPING);
	if(!record || !record->command)
		throw Velorn::VelornException("The plug-in has no tone mapping dialog (command 1023599).");
	RunCommand(*record, nullptr);
}

void TonemapChanges::poll()
{
	// The application sends its windows messages as the render goes on.
	EventAdd();
	RunOpenDialogs(2);
	if(made)
		return;
	{
		RenderState& state = renderState();
		std::lock_guard<std::mutex> guard(state.lock);
		if(state.root.isNull() || state.new_render)
			return;
		root = state.root;
	}
	for(const DialogAction& action : actions)
		DialogScript::get().pushAction(action);
	made = true;
	RunOpenDialogs(2);
}

void TonemapChanges::check() const
{
	if(!made)
		throw Velorn::VelornException("The render ended before the tone mapping dialog could change it.");
	const std::vector<DialogActionRecord> taken = DialogScript::get().actionsTaken();
	for(size_t i = 0; i < actions.size(); ++i)
	{
		const auto it = std::find_if(taken.begin(), taken.end(), [&](const DialogActionRecord& r) {
			return r.action.kind == actions[i].kind && r.action.id == actions[i].id && r.action.value == actions[i].value;
		});
		if(it == taken.end())
			throw Velorn::VelornException("--tonemap '" + settings[i] + "': the dialog did not take it.");
		if(it->refused.Content())
		{
			const bool layer = actions[i].id >= TM_LAYER_COLOUR;
			throw Velorn::VelornException("--tonemap '" + settings[i] + "': " +
				(layer ? std::string("the render has no such light layer") : it->refused.GetStdString()) + ".");
		}
	}
	for(const Velorn::Reference<Velorn::SceneNode>& node : {root->getToneMappingNode(), root->getRenderSettingsNode()})
		if(node.nonNull() && node->testFlags(NODE_CHANGED))
			throw Velorn::VelornException(
				"The render ended before it took the tone mapping changes; give it more samples (--spp).");
}

std::string TonemapChanges::report() const
{
	std::string text;
	for(const std::string& setting : settings)
		text += "Tone mapping: " + setting + "\n";
	return text;
}
