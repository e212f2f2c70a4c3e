#include "sdk/renderer.h"

#include "sdk/render_buffers.h"
#include "scene/scene_node_root.h"

#include <iostream>

namespace Velorn
{

namespace
{

void call(InterfaceBase& object, size_t position)
{
	object.entry<VoidFn>(position)(&object);
}

} // namespace

RendererImpl::RendererImpl(const Reference<VelornContext>& context_) : context(context_)
{
	if(context->create_instance(String("VelornInterface"), object) != 0)
		std::cout << "Failed to create Instance of 'VelornInterface'" << std::endl;
	if(object.isNull())
		return;
	const auto initialise = object->entry<RendererTable::InitialiseFn>(RendererTable::Initialise);
	if(initialise(object.getPointer(), &context->sdk_dir, &context->appdata_dir) != 0)
		std::cout << "Failed to initialise 'VelornInterface'" << std::endl;
}

RendererImpl::~RendererImpl()
{
	// The library's object may still use the scene and the buffer while it
	// ends, so it goes first.
	object = nullptr;
	scene_root = nullptr;
	render_buffer = nullptr;
	context = nullptr;
}

int RendererImpl::initialiseWithScene(const Reference<SceneNodeRoot>& root, const Reference<RenderBuffer>& buffer,
	const Vector<String>& args)
{
	scene_root = root;
	render_buffer = buffer;
	const auto initialise = object->entry<RendererTable::InitialiseWithSceneFn>(RendererTable::InitialiseWithScene);
	return initialise(object.getPointer(), &scene_root, render_buffer.getPointer(), &args);
}

void RendererImpl::startRendering()
{
	call(*object, RendererTable::StartRendering);
}

void RendererImpl::pauseRendering()
{
	call(*object, RendererTable::PauseRendering);
}

void RendererImpl::resumeRendering()
{
	call(*object, RendererTable::ResumeRendering);
}

void RendererImpl::stopRendering()
{
	call(*object, RendererTable::StopRendering);
}

double RendererImpl::getSamplesPerPixel()
{
	return object->entry<DoubleFn>(RendererTable::GetSamplesPerPixel)(object.getPointer());
}

double RendererImpl::getElapsedTime()
{
	return object->entry<DoubleFn>(RendererTable::GetElapsedTime)(object.getPointer());
}

void RendererImpl::getMessages(std::vector<Reference<InterfaceBase>>& out)
{
	out.clear();
	InterfaceBase* o = object.getPointer();
	call(*o, RendererTable::BeginMessages);
	while(!o->entry<BoolFn>(RendererTable::AtEndOfMessages)(o))
		out.push_back(Reference<InterfaceBase>(o->entry<RendererTable::NextMessageFn>(RendererTable::NextMessage)(o)));
	call(*o, RendererTable::EndMessages);
}

void RendererImpl::updateScene(const Reference<SceneNodeRoot>& root)
{
	object->entry<RendererTable::UpdateSceneFn>(RendererTable::UpdateScene)(object.getPointer(), &root);
}

Renderer::Renderer(const Reference<VelornContext>& context) : impl(new RendererImpl(context)) {}

Renderer::~Renderer() = default;

int Renderer::initialiseWithScene(const Reference<SceneNodeRoot>& root, const Reference<RenderBuffer>& buffer,
	const Vector<String>& args)
{
	return impl->initialiseWithScene(root, buffer, args);
}

void Renderer::startRendering()
{
	impl->startRendering();
}

void Renderer::pauseRendering()
{
	impl->pauseRendering();
}

void Renderer::resumeRendering()
{
	impl->resumeRendering();
}

void Renderer::stopRendering()
{
	impl->stopRendering();
}

double Renderer::getSamplesPerPixel()
{
	return impl->getSamplesPerPixel();
}

double Renderer::getElapsedTime()
{
	return impl->getElapsedTime();
}

void Renderer::getMessages(std::vector<Reference<InterfaceBase>>& out)
{
	impl->getMessages(out);
}

void Renderer::updateScene(const Reference<SceneNodeRoot>& root)
{
	impl->updateScene(root);
}

int messageType(InterfaceBase& message)
{
	return message.entry<MessageTable::GetTypeFn>(MessageTable::GetType)(&message);
}

String messageText(InterfaceBase& message)
{
	const String* text = message.entry<MessageTable::GetTextFn>(MessageTable::GetText)(&message);
	return text ? *text : String();
}

} // namespace Velorn
