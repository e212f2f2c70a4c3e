#include "c4d/hierarchy.h"

void Hierarchy::Free(void*) {}

void Hierarchy::CopyTo(void*, void*) {}

bool Hierarchy::Run(BaseDocument* doc, bool, double, int32_t, void* startdata, BaseThread* thread)
{
	if(!doc)
		return false;
	return walk(doc->GetFirstObject(), startdata, thread) != Walk::Broken;
}

Hierarchy::Walk Hierarchy::walk(BaseObject* first, void* data, BaseThread* thread)
{
	for(BaseObject* op = first; op; op = op->GetNext())
	{
		if(thread && thread->TestBreak())
			return Walk::Broken;
		if(!Do(data, op, op->GetMg(), false))
			return Walk::Stopped;
		if(!op->GetDown())
			continue;
		void* level = Alloc();
		if(level)
			CopyTo(data, level);
		const Walk result = walk(op->GetDown(), level ? level : data, thread);
		if(level)
			Free(level);
		if(result != Walk::Go)
			return result;
	}
	return Walk::Go;
}
