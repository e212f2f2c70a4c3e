#include "host/create_instances_command.h"

#include "c4d/atom_array.h"
#include "c4d/base_document.h"
#include "c4d/events.h"
#include "c4d/plugin_registry.h"
#include "host/plugin_ids.h"
#include "host/registration.h"

namespace
{

// The host's message that has a document update its objects.
const int32_t kDocumentUpdate = 7;

} // namespace

bool CreateInstancesCommand::Execute(BaseDocument* doc)
{
	if(!doc)
		return false;
	AtomArray active;
	doc->GetActiveObjects(active);
	AtomArray selection;
	for(int32_t i = 0; i < active.GetCount(); ++i)
		if(active.GetIndex(i)->IsInstanceOf(Obase))
			selection.Append(active.GetIndex(i));

	doc->StartUndo();
	// The instances go to the top of the tree, in the order of the selection.
	BaseObject* previous = nullptr;
	for(int32_t i = 0; i < selection.GetCount(); ++i)
	{
		BaseObject* op = static_cast<BaseObject*>(selection.GetIndex(i));
		BaseObject* instance = BaseObject::Alloc(ID_VELORN_INSTANCE);
		if(!instance)
			continue;
		instance->GetDataInstance()->SetLink(inst_link, op);
		doc->InsertObject(instance, nullptr, previous);
		instance->SetMg(op->GetMg());
		instance->SetName(op->GetName());
		doc->AddUndo(UNDOTYPE_NEW, instance);
		previous = instance;
	}
	if(selection.GetCount() == 0)
	{
		if(BaseObject* instance = BaseObject::Alloc(ID_VELORN_INSTANCE))
		{
			doc->InsertObject(instance, nullptr, nullptr);
			instance->SetBit(BIT_ACTIVE);
			doc->AddUndo(UNDOTYPE_NEW, instance);
		}
	}
	doc->EndUndo();
	doc->Message(kDocumentUpdate);
	EventAdd();
	return true;
}

bool RegisterCreateInstancesCommand()
{
	return registerNamed(10011, [](const String& name) {
		return RegisterCommandPlugin(ID_CREATE_INSTANCES, name, 0x20000000, moduleResourceFile("instance.tif"),
			String("Creates Instances"), new CreateInstancesCommand());
	});
}
