#include "c4d/host_paths.h"

#include "support/exceptions.h"
#include "support/file_utils.h"
#include "support/platform_utils.h"

Filename GeGetC4DPath(int32_t whichpath)
{
	if(whichpath != C4D_PATH_PREFS)
		return Filename();
	try
	{
		return Filename(String(Velorn::FileUtils::join(Velorn::PlatformUtils::getAPPDataDirPath(), "Cinema 4D Headless")));
	}
	catch(const Velorn::PlatformUtilsExcep&)
	{
		// Without a home directory the host has no preferences either.
		return Filename();
	}
}
