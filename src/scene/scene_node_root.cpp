#include "scene/scene_node_root.h"

#include "scene/xml_write.h"
#include "support/exceptions.h"
#include "support/file_utils.h"

namespace Velorn
{

SceneNodeRoot::SceneNodeRoot()
{
	name = "Scene";
	uid = UID(0);
}

Reference<SceneNode> SceneNodeRoot::clone() const
{
	printNotImplemented("SceneNodeRoot::clone() not yet implemented\n");
	return Reference<SceneNode>();
}

void SceneNodeRoot::writeXML(OStream& stream, unsigned depth, WriteContext& context) const
{
	XMLWrite::writeOpenTag(stream, depth, "scene");
	float last_reported = 0;
	for(size_t i = 0; i < children.size(); ++i)
	{
		children[i]->writeXML(stream, depth + 1, context);
		if(i + 1 < children.size())
			stream.write("\n");
		if(context.progress)
		{
			const float fraction = (float)i / (float)children.size();
			if(fraction - last_reported > 0.01f)
			{
				context.progress->setProgress(fraction);
				last_reported = fraction;
			}
		}
	}
	XMLWrite::writeCloseTag(stream, depth, "scene");
}

void SceneNodeRoot::doVisit(VisitOperation&) {}

bool SceneNodeRoot::doIsEqual(const SceneNode& other) const
{
	return other.getType() == SceneNodeType::Root && baseFieldsEqual(other);
}

Reference<SceneNode> SceneNodeRoot::firstChildOfType(unsigned type) const
{
	for(const Reference<SceneNode>& c : children)
		if(c->getType() == type)
			return c;
	return Reference<SceneNode>();
}

void SceneNodeRoot::appendChildrenOfType(unsigned type, Vector<Reference<SceneNode>>& out) const
{
	for(const Reference<SceneNode>& c : children)
		if(c->getType() == type)
			out.push_back(c);
}

Reference<SceneNode> SceneNodeRoot::getCameraNode() const { return firstChildOfType(SceneNodeType::Camera); }
Reference<SceneNode> SceneNodeRoot::getRenderSettingsNode() const { return firstChildOfType(SceneNodeType::RenderSettings); }
Reference<SceneNode> SceneNodeRoot::getToneMappingNode() const { return firstChildOfType(SceneNodeType::Tonemapping); }
Reference<SceneNode> SceneNodeRoot::getBackgroundSettingsNode() const
{
	return firstChildOfType(SceneNodeType::BackgroundSettings);
}
Reference<SceneNode> SceneNodeRoot::getMetaDataNode() const { return firstChildOfType(SceneNodeType::MetaData); }

void SceneNodeRoot::getMediumNodes(Vector<Reference<SceneNode>>& out) const
{
	appendChildrenOfType(SceneNodeType::Medium, out);
}

void SceneNodeRoot::getMaterialNodes(Vector<Reference<SceneNode>>& out) const
{
	appendChildrenOfType(SceneNodeType::Material, out);
}

namespace
{

// The scene's directory as the walks and the writer see it.
String sceneDirectory(const String& scene_path)
{
	return String(FileUtils::getDirectory(FileUtils::toPlatformSeparators(scene_path.str())));
}

} // namespace

void SceneNodeRoot::finalise(const String& scene_path)
{
	// Loading goes first so that binding can compare a model's materials
	// with the loaded mesh.
	VisitOperation load(VisitOperation::Load, scene_path, sceneDirectory(scene_path));
	visitTree(load);
	VisitOperation bind(VisitOperation::Bind, scene_path, sceneDirectory(scene_path));
	visitTree(bind);
	finalised = true;
}

void SceneNodeRoot::writeToFile(const String& path, bool write_absolute_paths, ProgressListener* progress)
{
	try
	{
		OFStream stream(path.str());
		stream.write("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n");
		WriteContext context;
		context.scene_path = path;
		context.scene_dir = sceneDirectory(path);
		context.write_uids = true;
		context.write_absolute_paths = write_absolute_paths;
		context.progress = progress;
		writeXML(stream, 0, context);
		stream.close();
	}
	catch(VelornException& e)
	{
		throw VelornException(e.what());
	}
	catch(...)
	{
		throw VelornException("An unhandled error has occured.");
	}
}

namespace
{

struct SingleNodeRule
{
	unsigned type;
	const char* message;
};

const SingleNodeRule single_node_rules[] = {
	{SceneNodeType::RenderSettings, "getNumChildrenOfType(SceneNodeRenderSettings) > 1"},
	{SceneNodeType::Tonemapping, "getNumChildrenOfType(SceneNodeToneMapping) > 1"},
	{SceneNodeType::Camera, "getNumChildrenOfType(SceneNodeCamera) > 1"},
	{SceneNodeType::BackgroundSettings, "getNumChildrenOfType(SceneNodeBackgroundSettings) > 1"},
	{SceneNodeType::MetaData, "getNumChildrenOfType(SceneNodeMetaData) > 1"},
};

} // namespace

void SceneNodeRoot::validate() const
{
	HashMap<UID, const SceneNode*, UIDHash> seen;
	for(const Reference<SceneNode>& c : children)
	{
		if(const SceneNode* const* first = seen.find(c->uid))
			throw VelornException("Two nodes sharing the same UID " + c->uid.toString() + ":\n" + (*first)->getName().str() + ", " +
								  c->getName().str());
		seen.insert(c->uid, c.getPointer());
	}
	for(const SingleNodeRule& rule : single_node_rules)
		if(getNumChildrenOfType(rule.type) > 1)
			throw VelornException(rule.message);
}

void SceneNodeRoot::updateNodes(const Vector<Reference<SceneNode>>& nodes)
{
	SceneNodeMap map;
	for(const Reference<SceneNode>& n : nodes)
		map.insert(n->uid, n);

	for(size_t i = 0; i < children.size(); ++i)
	{
		if(const Reference<SceneNode>* replacement = map.find(children[i]->uid))
		{
			children[i] = *replacement;
			children[i]->parent = this;
			child_index.insert(children[i]->uid, children[i].getPointer());
		}
		children[i]->updateReferences(map);
	}

	for(const Reference<SceneNode>& n : nodes)
		if(!findChild(n->uid))
			addChildNode(n);
}

void SceneNodeRoot::clearChangeFlags(uint64_t stamp)
{
	for(const Reference<SceneNode>& c : children)
		if(c->change_stamp <= stamp)
			c->flags = 0;
}

} // namespace Velorn
