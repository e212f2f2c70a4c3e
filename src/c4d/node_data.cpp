#include "c4d/node_data.h"

bool NodeData::Init(GeListNode*)
{
	return true;
}

void NodeData::Free(GeListNode*)
{
}

bool NodeData::Message(GeListNode*, int32_t, void*)
{
	return true;
}

bool CommandData::Execute(BaseDocument*)
{
	return false;
}
