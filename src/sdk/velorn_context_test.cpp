#include "sdk/velorn_context.h"

#include "fake_sdk_test/call_record.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <sstream>

using Velorn::Reference;
using Velorn::VelornContext;

namespace
{

// A renderer directory of its own per test, into which the built fakes are
// copied under the names that the loader looks for.
class SdkDirectory : public ::testing::Test
{
protected:
	void SetUp() override { FakeSdk::clearCalls(); }

	void install(const char* built_library, const std::string& name)
	{
		VelornTest::writeFile(dir.file(name), VelornTest::readFile(built_library));
	}

	// Loads from the directory; error_out starts with stale text, which load
	// must clear.
	int load()
	{
		error = "stale";
		return context->load(dir.path(), "/home/user/.config/Velorn Renderer", error);
	}

	// The init call that the fake of variant records for this context.
	std::string initCall(const std::string& variant) const
	{
		std::ostringstream call;
		call << "init " << variant << " " << static_cast<const void*>(&context->sdk_dir) << " " << dir.path();
		return call.str();
	}

	VelornTest::TempDir dir;
	Reference<VelornContext> context{new VelornContext()};
	std::string error;
};

using Calls = std::vector<std::string>;

} // namespace

TEST_F(SdkDirectory, FullLibraryIsInitialisedOnceAndShutDownBeforeItIsUnloaded)
{
	install(FAKE_SDK_FULL, "velorn_sdk.dll");
	EXPECT_EQ(load(), VelornContext::LOAD_OK);
	EXPECT_EQ(error, "");
	EXPECT_TRUE(context->isLoaded());
	EXPECT_EQ(context->sdk_dir, dir.path().c_str());
	EXPECT_EQ(context->appdata_dir, "/home/user/.config/Velorn Renderer");
	// init gets the address of the context's own copy of the directory.
	const std::string init = initCall("full");
	EXPECT_EQ(FakeSdk::calls(), (Calls{"loaded full", init}));

	context = nullptr;
	EXPECT_EQ(FakeSdk::calls(), (Calls{"loaded full", init, "shutdown full", "unloaded full"}));
}

TEST_F(SdkDirectory, TheFullLibraryIsPreferredAndTheRealtimeEditionIsTheFallback)
{
	install(FAKE_SDK_RT, "velorn_rt_sdk.dll");
	{
		SCOPED_TRACE("only the realtime edition");
		EXPECT_EQ(load(), VelornContext::LOAD_OK);
		EXPECT_EQ(FakeSdk::calls(), (Calls{"loaded rt", initCall("rt")}));
		context = new VelornContext();
	}
	{
		SCOPED_TRACE("both");
		FakeSdk::clearCalls();
		install(FAKE_SDK_FULL, "velorn_sdk.dll");
		EXPECT_EQ(load(), VelornContext::LOAD_OK);
		EXPECT_EQ(FakeSdk::calls(), (Calls{"loaded full", initCall("full")}));
	}
}

TEST_F(SdkDirectory, NoLibraryInTheDirectory)
{
	VelornTest::writeFile(dir.file("velorn.exe"), "");
	EXPECT_EQ(load(), VelornContext::LOAD_NO_LIBRARY);
	// The code is that of the failed test for the file: "not found" is 2 on
	// every platform.
	EXPECT_EQ(error, "Failed to load DLL from '" + dir.path() + "' (Error code: 2)");
	EXPECT_FALSE(context->isLoaded());
	EXPECT_EQ(context->module, nullptr);
	// The directories are kept even so.
	EXPECT_EQ(context->sdk_dir, dir.path().c_str());
	EXPECT_EQ(context->appdata_dir, "/home/user/.config/Velorn Renderer");
}

TEST_F(SdkDirectory, AFileThatIsNoLibrary)
{
	// The first file that exists is the one loaded, even when the second
	// would load.
	VelornTest::writeFile(dir.file("velorn_sdk.dll"), "MZ this is not a library");
	install(FAKE_SDK_RT, "velorn_rt_sdk.dll");
	EXPECT_EQ(load(), VelornContext::LOAD_LIBRARY_REFUSED);
	EXPECT_NE(error, "");
	EXPECT_NE(error, "stale");
#ifdef _WIN32
	// The system's text for ERROR_BAD_EXE_FORMAT, with its code behind.
	EXPECT_NE(error.find("(error code=193)"), std::string::npos) << error;
#endif
	EXPECT_FALSE(context->isLoaded());
	EXPECT_EQ(context->module, nullptr);
	EXPECT_EQ(FakeSdk::calls(), Calls{});
}

TEST_F(SdkDirectory, AMissingEntryPointLeavesTheLibraryLoadedUntilTheEnd)
{
	install(FAKE_SDK_NO_SHUTDOWN, "velorn_sdk.dll");
	EXPECT_EQ(load(), VelornContext::LOAD_MISSING_PROCEDURE);
	EXPECT_EQ(error, "unable to get address of procedure 'velornGlobalLibraryShutdown'");
	EXPECT_FALSE(context->isLoaded());
	EXPECT_NE(context->module, nullptr);
	EXPECT_NE(context->create_instance, nullptr);
	EXPECT_NE(context->global_init, nullptr);
	// Not initialised, so not shut down either; only unloaded.
	EXPECT_EQ(FakeSdk::calls(), Calls{"loaded no_shutdown"});
	context = nullptr;
	EXPECT_EQ(FakeSdk::calls(), (Calls{"loaded no_shutdown", "unloaded no_shutdown"}));
}
