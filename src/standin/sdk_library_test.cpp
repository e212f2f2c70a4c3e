// The SDK library as the plug-in uses it: loaded by VelornContext from the
// renderer directory, objects made by name and driven through their tables.
#include "sdk/interface_base.h"
#include "sdk/render_buffers.h"
#include "sdk/velorn_context.h"
#include "scene/scene_node_tonemapping.h"
#include "standin/standin_test_helpers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <thread>

namespace Velorn
{
namespace
{

using StandinTest::makeRoot;

// Every object's destroy goes through here, so that a test can tell how
// often each was called.
std::map<InterfaceBase*, InterfaceBase::DestroyFunction> original_destroy;
std::map<InterfaceBase*, int> destroy_calls;

void countingDestroy(InterfaceBase* object)
{
	++destroy_calls[object];
	original_destroy[object](object);
}

void watchDestroy(InterfaceBase* object)
{
	original_destroy[object] = object->destroy;
	destroy_calls[object] = 0;
	object->destroy = &countingDestroy;
}

template <class Condition>
bool waitFor(Condition condition, double seconds = 20)
{
	const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
	while(!condition())
	{
		if(std::chrono::steady_clock::now() > end)
			return false;
		std::this_thread::sleep_for(std::chrono::milliseconds(2));
	}
	return true;
}

class SdkLibrary : public ::testing::Test
{
protected:
	void SetUp() override
	{
		original_destroy.clear();
		destroy_calls.clear();
		std::string error;
		ASSERT_EQ(context->load(STANDIN_RENDERER_DIR, "/tmp/Velorn Renderer", error), VelornContext::LOAD_OK) << error;
		ASSERT_TRUE(context->isLoaded());
	}

	Reference<InterfaceBase> create(const char* class_name)
	{
		Reference<InterfaceBase> object;
		EXPECT_EQ(context->create_instance(String(class_name), object), 0) << class_name;
		if(object.nonNull())
			watchDestroy(object.getPointer());
		return object;
	}

	// The renderer r set up with root's scene into buffer; the result code.
	static int initialiseWithScene(InterfaceBase* r, const Reference<SceneNodeRoot>& root, RenderBuffer& buffer)
	{
		const Vector<String> args{String("dummy.vls")};
		return r->entry<RendererTable::InitialiseWithSceneFn>(RendererTable::InitialiseWithScene)(r, &root, &buffer, &args);
	}

	Reference<VelornContext> context{new VelornContext()};
};

TEST_F(SdkLibrary, RendersPausesResumesStopsAndToneMaps)
{
	// A uniform background and nothing else. The render starts with a
	// background of 2 and is updated, while running, to one of 0.5: every
	// pixel is then 0.5, which linear tone mapping by 1 and gamma 2.2 makes
	// round(255 * 0.5^(1 / 2.2)) = 186 (and 2 would make 255).
	Reference<SceneNodeRoot> root = makeRoot(8, 6, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	StandinTest::addUniformBackground(*root, 2.0, 0);
	Reference<SceneNodeRoot> updated = makeRoot(8, 6, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	StandinTest::addUniformBackground(*updated, 0.5, 0);
	Reference<SceneNode> tone_mapping = new SceneNodeTonemapping(1.0);
	updated->addChildNode(tone_mapping);
	Reference<RenderBuffer> buffer = new RenderBuffer(*root);

	Reference<InterfaceBase> renderer = create("VelornInterface");
	ASSERT_TRUE(renderer.nonNull());
	InterfaceBase* r = renderer.getPointer();
	EXPECT_EQ(r->entry<RendererTable::InitialiseFn>(RendererTable::Initialise)(r, &context->sdk_dir, &context->appdata_dir), 0);
	ASSERT_EQ(initialiseWithScene(r, root, *buffer), 0);

	auto spp = [&] { return r->entry<DoubleFn>(RendererTable::GetSamplesPerPixel)(r); };
	EXPECT_EQ(spp(), 0);
	r->entry<VoidFn>(RendererTable::StartRendering)(r);
	ASSERT_TRUE(waitFor([&] { return spp() >= 2; }));
	r->entry<VoidFn>(RendererTable::PauseRendering)(r);
	std::this_thread::sleep_for(std::chrono::milliseconds(30));
	const double paused = spp();
	std::this_thread::sleep_for(std::chrono::milliseconds(100));
	EXPECT_EQ(spp(), paused);
	r->entry<VoidFn>(RendererTable::ResumeRendering)(r);
	ASSERT_TRUE(waitFor([&] { return spp() > paused; }));
	// The new scene starts from nothing and renders on.
	r->entry<RendererTable::UpdateSceneFn>(RendererTable::UpdateScene)(r, &updated);
	ASSERT_TRUE(waitFor([&] { return spp() >= 2; }));
	r->entry<VoidFn>(RendererTable::StopRendering)(r);
	EXPECT_GT(r->entry<DoubleFn>(RendererTable::GetElapsedTime)(r), 0);

	// No errors: the iteration still begins and ends.
	r->entry<VoidFn>(RendererTable::BeginMessages)(r);
	EXPECT_TRUE(r->entry<BoolFn>(RendererTable::AtEndOfMessages)(r));
	r->entry<VoidFn>(RendererTable::EndMessages)(r);

	Reference<InterfaceBase> tone_mapper = create("ToneMapperDLLAPI");
	ASSERT_TRUE(tone_mapper.nonNull());
	InterfaceBase* t = tone_mapper.getPointer();
	Reference<UInt8Buffer> bytes = new UInt8Buffer();
	String error;
	t->entry<ToneMapperTable::InitialiseFn>(ToneMapperTable::Initialise)(t, &context->sdk_dir, &context->appdata_dir,
		buffer.getPointer(), bytes.getPointer(), nullptr, 2.2f, &error);
	EXPECT_EQ(error, "");
	const Reference<SceneNode> settings = updated->getRenderSettingsNode();
	const Reference<SceneNode> camera = updated->getCameraNode();
	t->entry<ToneMapperTable::SetParametersFn>(ToneMapperTable::SetParameters)(t, &tone_mapping, &settings, &camera, &error);
	EXPECT_EQ(error, "");
	bytes->resize(8, 6);
	t->entry<VoidFn>(ToneMapperTable::Update)(t);
	ASSERT_TRUE(waitFor([&] { return t->entry<BoolFn>(ToneMapperTable::IsDone)(t); }));
	{
		std::lock_guard<std::mutex> lock(bytes->mutex);
		for(uint32_t y : {0u, 5u})
			for(uint32_t x : {0u, 3u, 7u})
				for(int c = 0; c < 3; ++c)
					EXPECT_EQ(bytes->getPixel(x, y)[c], 186) << x << ", " << y;
	}

	InterfaceBase* renderer_object = r;
	InterfaceBase* tone_mapper_object = t;
	renderer = nullptr;
	tone_mapper = nullptr;
	EXPECT_EQ(destroy_calls[renderer_object], 1);
	EXPECT_EQ(destroy_calls[tone_mapper_object], 1);
}

TEST_F(SdkLibrary, CommandsFromAnotherThreadMeetARenderBeingRebuilt)
{
	// The host's commands (pause, resume, the status readings) come from the
	// main thread while the render thread builds and rebuilds the scene:
	// every call must find either the former render or the new one, never
	// one half torn down.
	Reference<SceneNodeRoot> root = makeRoot(8, 6, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	StandinTest::addUniformBackground(*root, 1.0, 0);
	Reference<RenderBuffer> buffer = new RenderBuffer(*root);
	Reference<InterfaceBase> renderer = create("VelornInterface");
	InterfaceBase* r = renderer.getPointer();
	ASSERT_EQ(initialiseWithScene(r, root, *buffer), 0);
	r->entry<VoidFn>(RendererTable::StartRendering)(r);

	std::atomic<bool> rebuilding{true};
	std::thread render_thread([&] {
		for(int i = 0; i < 20; ++i)
			r->entry<RendererTable::UpdateSceneFn>(RendererTable::UpdateScene)(r, &root);
		rebuilding = false;
	});
	while(rebuilding)
	{
		r->entry<VoidFn>(RendererTable::PauseRendering)(r);
		r->entry<DoubleFn>(RendererTable::GetSamplesPerPixel)(r);
		r->entry<DoubleFn>(RendererTable::GetElapsedTime)(r);
		r->entry<VoidFn>(RendererTable::ResumeRendering)(r);
	}
	render_thread.join();
	// The last render runs on.
	r->entry<VoidFn>(RendererTable::ResumeRendering)(r);
	EXPECT_TRUE(waitFor([&] { return r->entry<DoubleFn>(RendererTable::GetSamplesPerPixel)(r) >= 1; }));
	r->entry<VoidFn>(RendererTable::StopRendering)(r);
}

TEST_F(SdkLibrary, SceneThatCannotBeRenderedGivesAnErrorMessage)
{
	Reference<SceneNodeRoot> root = makeRoot(0, 6, Vec3d(0, 0, 0), Vec3d(0, 1, 0));
	Reference<RenderBuffer> buffer = new RenderBuffer(*root);
	Reference<InterfaceBase> renderer = create("VelornInterface");
	InterfaceBase* r = renderer.getPointer();
	EXPECT_EQ(initialiseWithScene(r, root, *buffer), 1);

	std::vector<Reference<InterfaceBase>> messages;
	r->entry<VoidFn>(RendererTable::BeginMessages)(r);
	while(!r->entry<BoolFn>(RendererTable::AtEndOfMessages)(r))
	{
		messages.push_back(r->entry<RendererTable::NextMessageFn>(RendererTable::NextMessage)(r));
		watchDestroy(messages.back().getPointer());
	}
	r->entry<VoidFn>(RendererTable::EndMessages)(r);
	ASSERT_EQ(messages.size(), 1u);
	// The message outlives the iteration while the caller holds it.
	InterfaceBase* m = messages[0].getPointer();
	EXPECT_EQ(m->entry<MessageTable::GetTypeFn>(MessageTable::GetType)(m), MessageTable::ErrorMessage);
	EXPECT_EQ(*m->entry<MessageTable::GetTextFn>(MessageTable::GetText)(m),
		"Image size 0 x 6 is out of range (1 to 16384 pixels a side).");
	EXPECT_EQ(destroy_calls[m], 0);
	messages.clear();
	EXPECT_EQ(destroy_calls[m], 1);

	// An unknown class name makes nothing.
	Reference<InterfaceBase> nothing;
	EXPECT_NE(context->create_instance(String("NoSuchClass"), nothing), 0);
	EXPECT_TRUE(nothing.isNull());
}

TEST_F(SdkLibrary, HardwareInfoListsNoGPU)
{
	Reference<InterfaceBase> hardware = create("HardwareInfoDLLAPI");
	ASSERT_TRUE(hardware.nonNull());
	Reference<InterfaceBase> list;
	hardware->entry<HardwareInfoTable::GPUListFn>(HardwareInfoTable::GetGPUList)(hardware.getPointer(), &list);
	ASSERT_TRUE(list.nonNull());
	EXPECT_EQ(static_cast<GPUInfoList&>(*list).gpus.size(), 0u);
}

} // namespace
} // namespace Velorn
