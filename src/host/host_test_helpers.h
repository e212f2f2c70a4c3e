#pragma once

#include "c4d/base_document.h"
#include "c4d/description.h"
#include "c4d/plugin_registry.h"
#include "c4d/resources.h"
#include "host/plugin_globals.h"
#include "support/file_utils.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <initializer_list>
#include <string>
#include <thread>

// What the program that records its arguments wrote to record, one a line,
// with POSIX line ends. The program runs by itself, so its record is waited
// for, up to 20 s; "(not launched)" when none appears.
inline std::string recordedArguments(const std::string& record)
{
	const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
	while(!Velorn::FileUtils::fileExists(record))
	{
		if(std::chrono::steady_clock::now() > deadline)
			return "(not launched)";
		std::this_thread::sleep_for(std::chrono::milliseconds(20));
	}
	std::string text = VelornTest::readFile(record);
	text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
	return text;
}

// The recorded arguments behind the program's name, "-seed" and the seed,
// a whole number (the seed changes from run to run).
inline std::string argumentsAfterSeed(const std::string& recorded, const std::string& program)
{
	const std::string head = program + "\n-seed\n";
	EXPECT_EQ(recorded.substr(0, head.size()), head) << recorded;
	const size_t end = recorded.find('\n', head.size());
	if(end == std::string::npos)
		return recorded;
	EXPECT_EQ(recorded.substr(head.size(), end - head.size()).find_first_not_of("0123456789"), std::string::npos)
		<< recorded;
	return recorded.substr(end + 1);
}

// A document with the module's resources (strings and description files)
// read from the source tree and the given registrations made.
class HostPluginTest : public testing::Test
{
protected:
	void registerPlugins(std::initializer_list<std::function<bool()>> registrations)
	{
		PluginRegistry::get().clear();
		ASSERT_TRUE(HostResources::get().init(Filename(String(VelornTest::testDataPath("../src/host")))))
			<< HostResources::get().error().GetStdString();
		for(const auto& registration : registrations)
			ASSERT_TRUE(registration());
		doc = BaseDocument::Alloc();
	}

	void TearDown() override
	{
		BaseDocument::Free(doc);
		PluginRegistry::get().clear();
		HostResources::get().clear();
		realtime_edition = 0;
	}

	// A new object of the type at the top of the document, after the others.
	BaseObject* addObject(int32_t type, const char* name = "", BaseObject* parent = nullptr)
	{
		BaseObject* op = BaseObject::Alloc(type);
		EXPECT_NE(op, nullptr);
		op->SetName(String(name));
		BaseObject* last = parent ? parent->GetDown() : doc->GetFirstObject();
		while(last && last->GetNext())
			last = last->GetNext();
		doc->InsertObject(op, parent, last);
		return op;
	}

	// The node's description as the attribute manager builds it.
	static Description describe(BaseList2D* node)
	{
		Description description;
		int32_t flags = 0;
		EXPECT_TRUE(node->GetNodeData()->GetDDescription(node, &description, flags));
		EXPECT_EQ(flags & DESCFLAGS_DESC_LOADED, DESCFLAGS_DESC_LOADED);
		return description;
	}

	// Expects each id of shown to be in the description and visible, each of
	// hidden to be hidden (itself or by its group).
	static void expectVisibility(const Description& description, std::initializer_list<int32_t> shown,
		std::initializer_list<int32_t> hidden)
	{
		for(int32_t id : shown)
		{
			EXPECT_NE(description.find(DescID(id)), nullptr) << id;
			EXPECT_FALSE(description.IsHidden(DescID(id))) << id << " should show";
		}
		for(int32_t id : hidden)
			EXPECT_TRUE(description.IsHidden(DescID(id))) << id << " should be hidden";
	}

	BaseDocument* doc = nullptr;
};
