#include "cli/tonemap_changes.h"

#include "render/tonemap_dialog.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

namespace
{

TEST(TonemapChanges, EachKeySetsItsGadgetAndABadOneIsOneLine)
{
	struct Case
	{
		const char* setting;
		int32_t id;
		const char* value;
	};
	const Case cases[] = {
		{"type=Camera", TM_TYPE, "6014"},
		{"type=linear", TM_TYPE, "6012"},
		{"type=reinhard", TM_TYPE, "6008"},
		{"scale=2", TM_LINEAR_SCALE, "2"},
		{"pre_scale=8", TM_PRE_SCALE, "8"},
		{"post_scale=0.5", TM_POST_SCALE, "0.5"},
		{"burn=3", TM_BURN, "3"},
		{"film_iso=400", TM_FILM_ISO, "400"},
		{"exposure=-1.5", TM_EV_ADJUST, "-1.5"},
		{"ev_adjust=2", TM_EV_ADJUST, "2"},
		{"response=portra-800CD.txt", TM_RESPONSE, "57"},
		{"white_x=0.3", TM_WHITE_X, "0.3"},
		{"white_y=0.31", TM_WHITE_Y, "0.31"},
		{"white_preset=6025", TM_WHITE_PRESET, "6025"},
		{"white_preset=0", TM_WHITE_PRESET, "0"},
		{"layer0_gain=1,0.5,0.25", TM_LAYER_COLOUR, "1,0.5,0.25"},
		{"layer12_gain=1,1,1,2", TM_LAYER_COLOUR + 12, "1,1,1,2"},
		{"layer3_enabled=OFF", TM_LAYER_ENABLED + 3, "off"},
	};
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.setting);
		const DialogAction action = TonemapChanges::actionOf(c.setting);
		EXPECT_EQ(action.kind, DialogAction::Kind::Set);
		EXPECT_EQ(action.id, c.id);
		EXPECT_EQ(action.value, String(c.value));
	}

	const std::pair<const char*, const char*> bad[] = {
		{"exposure", "--tonemap 'exposure': a change is KEY=VALUE"},
		{"gamma=2", "--tonemap 'gamma=2': unknown key 'gamma'"},
		{"layerx_gain=1,1,1", "--tonemap 'layerx_gain=1,1,1': unknown key 'layerx_gain'"},
		{"type=film", "--tonemap 'type=film': the type is linear, reinhard or camera"},
		{"burn=6x", "--tonemap 'burn=6x': '6x' is not a number"},
		{"response=none.txt",
			"--tonemap 'response=none.txt': 'none.txt' is no camera response function of the renderer (such as dscs315.txt)"},
		{"white_preset=6019", "--tonemap 'white_preset=6019': the preset is 0 (none) or an entry from 6020 to 6031"},
		{"layer0_gain=1,1", "--tonemap 'layer0_gain=1,1': the gain is r,g,b or r,g,b,brightness"},
		{"layer0_enabled=yes", "--tonemap 'layer0_enabled=yes': a layer is enabled on or off"},
	};
	for(const auto& b : bad)
	{
		SCOPED_TRACE(b.first);
		try
		{
			TonemapChanges changes({"burn=2", b.first});
			ADD_FAILURE() << "accepted";
		}
		catch(const Velorn::VelornException& e)
		{
			EXPECT_EQ(std::string(e.what()), b.second);
		}
	}
}

} // namespace
