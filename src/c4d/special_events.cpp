#include "c4d/special_events.h"

#include "c4d/plugin_registry.h"

#include <deque>
#include <memory>
#include <mutex>

namespace
{

struct Event
{
	int32_t id;
	uintptr_t p1;
	uintptr_t p2;
};

std::mutex queue_mutex;
std::deque<Event> queue;

} // namespace

bool RegisterMessagePlugin(int32_t id, const String& name, int32_t info, MessageData* handler)
{
	std::shared_ptr<MessageData> owned(handler);
	if(!owned)
		return false;
	PluginRecord record;
	record.kind = PluginKind::Message;
	record.id = id;
	record.name = name;
	record.info = info;
	record.message = owned;
	return PluginRegistry::get().add(std::move(record));
}

void SpecialEventAdd(int32_t id, uintptr_t p1, uintptr_t p2)
{
	std::lock_guard<std::mutex> lock(queue_mutex);
	queue.push_back(Event{id, p1, p2});
}

int32_t RunMainThreadEvents()
{
	std::deque<Event> taken;
	{
		std::lock_guard<std::mutex> lock(queue_mutex);
		taken.swap(queue);
	}
	for(const Event& event : taken)
	{
		// The handler is held while it runs, so that a registry cleared
		// meanwhile does not pull it away.
		std::shared_ptr<MessageData> handler;
		if(const PluginRecord* record = PluginRegistry::get().find(event.id))
			if(record->kind == PluginKind::Message)
				handler = record->message;
		if(handler)
			handler->CoreMessage(event.id, event.p1, event.p2);
	}
	return (int32_t)taken.size();
}

int32_t PendingMainThreadEvents()
{
	std::lock_guard<std::mutex> lock(queue_mutex);
	return (int32_t)queue.size();
}
