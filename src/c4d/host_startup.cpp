#include "c4d/host_startup.h"

#include "c4d/menus.h"
#include "c4d/preview_scenes.h"

#include <atomic>

namespace
{

const int32_t start_version_type = 1;

std::atomic<int32_t> version_type{start_version_type};

} // namespace

int32_t GeGetVersionType()
{
	return version_type;
}

void SetVersionType(int32_t bits)
{
	version_type = bits;
}

void ResetStartupServices()
{
	version_type = start_version_type;
	HostMenus::get().reset();
	PreviewScenes::get().clear();
}
