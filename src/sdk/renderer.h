#pragma once

#include "sdk/interface_base.h"
#include "sdk/velorn_context.h"
#include "support/reference.h"
#include "support/velorn_string.h"
#include "support/velorn_vector.h"

#include <memory>
#include <vector>

namespace Velorn
{

class RenderBuffer;
class SceneNodeRoot;

// The renderer object of the SDK library, driven through its table. Each
// operation is one call into the library; a call out of order is the
// library's to cope with.
class RendererImpl
{
public:
	// Makes "VelornInterface" in the library and initialises it with the
	// context's directories. A failure is printed on standard output and the
	// object stays built: the caller has tested context->isLoaded() first.
	explicit RendererImpl(const Reference<VelornContext>& context);
	// Releases the library's object first, then the scene, the buffer and
	// the context.
	virtual ~RendererImpl();

	// Keeps root and buffer (replacing the former ones) and hands them to
	// the library with args, a command line whose first word is the scene's
	// path. 0 is success.
	virtual int initialiseWithScene(const Reference<SceneNodeRoot>& root, const Reference<RenderBuffer>& buffer,
		const Vector<String>& args);
	virtual void startRendering();
	virtual void pauseRendering();
	virtual void resumeRendering();
	virtual void stopRendering();
	virtual double getSamplesPerPixel();
	virtual double getElapsedTime();

	// Every message the library holds, oldest first; each stays valid while
	// out holds it. Empty when there is none.
	void getMessages(std::vector<Reference<InterfaceBase>>& out);
	// Tells the running renderer that nodes of root changed.
	void updateScene(const Reference<SceneNodeRoot>& root);

private:
	Reference<VelornContext> context;
	Reference<InterfaceBase> object;
	Reference<RenderBuffer> render_buffer;
	Reference<SceneNodeRoot> scene_root;
};

// The renderer as the plug-in holds it: a counted object that forwards to
// its implementation.
class Renderer : public RefCounted
{
public:
	explicit Renderer(const Reference<VelornContext>& context);
	~Renderer() override;

	int initialiseWithScene(const Reference<SceneNodeRoot>& root, const Reference<RenderBuffer>& buffer,
		const Vector<String>& args);
	void startRendering();
	void pauseRendering();
	void resumeRendering();
	void stopRendering();
	double getSamplesPerPixel();
	double getElapsedTime();
	void getMessages(std::vector<Reference<InterfaceBase>>& out);
	void updateScene(const Reference<SceneNodeRoot>& root);

private:
	std::unique_ptr<RendererImpl> impl;
};

// The type of a message object of the library (MessageTable::ErrorMessage
// for an error) and its text.
int messageType(InterfaceBase& message);
String messageText(InterfaceBase& message);

} // namespace Velorn
