// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include "base/errors.h"
#include "contracts/command.h"
#include "contracts/extension.h"
#include "hosting/extension_library.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"

/// \file
/// What the built extension library makes, by the registered names of its classes.
namespace kestrel {
namespace {

using base::RuntimeError;
using contracts::ExtensionObject;
using hosting::ExtensionLibrary;
using testing::HasSubstr;
using testing::StartsWith;

/// Whether an object of the library has the contracts.
template <typename... Contracts>
bool has(ExtensionObject& object) {
    return ((dynamic_cast<Contracts*>(&object) != nullptr) && ...);
}

TEST(ClassCreation, EveryRegisteredNameMakesAnObjectWithItsContracts) {
    const ExtensionLibrary library(KESTREL_EXTENSION_LIBRARY);
    const auto extension = library.create("KESTREL_EXT.clsExtension");
    const auto command = library.create("KESTREL_EXT.clsCommands");
    const auto menu = library.create("KESTREL_EXT.clsMenuDef");
    const auto toolbar = library.create("KESTREL_EXT.clsToolbar");
    EXPECT_TRUE((has<contracts::IExtension, contracts::IExtensionConfig>(*extension)));
    EXPECT_TRUE((has<contracts::ICommand, contracts::ICommandSubType>(*command)));
    EXPECT_TRUE(has<contracts::IMenuDef>(*menu));
    EXPECT_TRUE(has<contracts::IToolBarDef>(*toolbar));
    EXPECT_FALSE(has<contracts::IMenuDef>(*toolbar));
    EXPECT_EQ(test::error_of([&] { hosting::contract<contracts::IMenuDef>(*toolbar); }).number(), 13);
}

TEST(ClassCreation, EveryCallMakesANewObject) {
    const ExtensionLibrary library(KESTREL_EXTENSION_LIBRARY);
    EXPECT_NE(library.create("KESTREL_EXT.clsCommands"), library.create("KESTREL_EXT.clsCommands"));
}

TEST(ClassCreation, UnknownNameMakesNothing) {
    const ExtensionLibrary library(KESTREL_EXTENSION_LIBRARY);
    for (const char* name : {"KESTREL_EXT.clsOther", "kestrel_ext.clscommands", "clsCommands", ""}) {
        const RuntimeError error = test::error_of([&] { (void)library.create(name); });
        EXPECT_EQ(error.number(), 91);
        EXPECT_THAT(error.description(), HasSubstr("does not make an object of class '" + std::string(name) + "'"));
    }
}

/// The library as a host sees it that has nothing but the system's loader.
class PlainLoading : public testing::Test {
  protected:
    PlainLoading() : m_handle(::dlopen(KESTREL_EXTENSION_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
    ~PlainLoading() override { ::dlclose(m_handle); }

    void* m_handle;
};

TEST_F(PlainLoading, TheFunctionAnswersNothingForUnknownNamesAndNoName) {
    auto* const create = reinterpret_cast<contracts::CreateObject*>(::dlsym(m_handle, "kestrel_create_object"));
    ASSERT_NE(create, nullptr);
    EXPECT_EQ(create("KESTREL_EXT.clsOther"), nullptr);
    EXPECT_EQ(create(nullptr), nullptr);
}

TEST_F(PlainLoading, NoOtherNameIsExported) {
    ASSERT_NE(m_handle, nullptr);
    for (const char* name : {"_ZN7kestrel9reporting19current_interactionEv", "_ZTIN7kestrel4base12RuntimeErrorE",
                             "_ZTVN7kestrel11clsCommandsE"}) {
        void* const found = ::dlsym(m_handle, name);
        EXPECT_EQ(found, nullptr) << name;
    }
}

TEST(LoadingALibrary, MissingFileIsError53) {
    const RuntimeError error = test::error_of([] { ExtensionLibrary("/no/such/libkestrel_ext.so"); });
    EXPECT_EQ(error.number(), 53);
    EXPECT_EQ(error.description(), "There is no extension library '/no/such/libkestrel_ext.so'");
}

TEST(LoadingALibrary, FileThatIsNoLibraryIsToldWithTheLoadersReason) {
    const RuntimeError error = test::error_of([] { ExtensionLibrary(KESTREL_SOURCE_DIR "/README.md"); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), StartsWith("The extension library cannot be loaded: "));
    EXPECT_THAT(error.description(), HasSubstr("README.md"));
}

TEST(LoadingALibrary, LibraryWithoutTheFunctionIsNoExtensionLibrary) {
    const RuntimeError error = test::error_of([] { ExtensionLibrary(KESTREL_OTHER_LIBRARY); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), HasSubstr("is no extension library: "));
    EXPECT_THAT(error.description(), HasSubstr("kestrel_create_object"));
}

}  // namespace
}  // namespace kestrel
