#pragma once

#include "c4d/ge_data.h"
#include "c4d/ge_dialog.h"

#include <memory>

class BakeThread;
class BaseDocument;
class TextureTag;

// The items of the bake dialog.
enum
{
	IDC_BAKE_SHADERS = 10001,
	IDC_BAKE_ALBEDO = 10002,
	IDC_BAKE_EMISSION = 10003,
	IDC_BAKE_BUMP = 10004,
	IDC_BAKE_DISPLACEMENT = 10005,
	IDC_BAKE_EXPONENT = 10006,
	IDC_BAKE_SIGMA = 10007,
	IDC_BAKE_BLEND = 10008,
	IDC_BAKE_RES_X = 10011,
	IDC_BAKE_RES_Y = 10012,
	IDC_BAKE_PIXEL_BORDER = 10013,
	IDC_BAKE_SAVE_TO = 10017,
	IDC_BAKE_BROWSE = 10018,
	IDC_BAKE_SUPER_SAMPLING = 10020,
	IDC_BAKE_CHANNELS_GROUP = 10100,
	IDC_BAKE_SETTINGS_GROUP = 10101,
};

// The "Bake Dialog": bakes the shader channels of the plug-in material of a
// texture tag on a polygon object into image files. The boxes start on for
// the channels that are switched on and hold a shader; "Bake Shaders"
// prepares copies of the object and the material and hands them to a
// BakeThread, whose end the dialog's timer waits for. Closing the dialog
// leaves a bake running; it ends with the dialog object.
class BakeDialog : public GeDialog
{
public:
	BakeDialog();
	~BakeDialog() override;

	// The tag whose material and object are baked: a texture tag of the
	// plug-in material on a polygon object of doc. Set before Open.
	void SetTarget(BaseDocument* doc, TextureTag* tag);

	bool CreateLayout() override;
	bool InitValues() override;
	bool Command(int32_t id, const BaseContainer& msg) override;
	void Timer(const BaseContainer& msg) override;

	// The settings a bake started now would hand to its thread: the host
	// baking service's parameters from the dialog's values, the base file
	// name and the channel boxes (bake_thread.h).
	BaseContainer BakeSettings() const;

	// The bake that runs or ran last; null before the first.
	BakeThread* GetThread() const { return thread.get(); }

private:
	// The steps of "Bake Shaders"; false when nothing was started.
	bool bake();
	TextureTag* target() const;

	BaseDocument* document = nullptr;
	// A link, so that a tag deleted while the dialog is open reads as none.
	GeData tagLink;
	std::unique_ptr<BakeThread> thread;
};
