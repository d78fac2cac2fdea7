#include "platform/linux/BusControl.hpp"

#include <gtest/gtest.h>

#include <string>

namespace quorvel::native {
namespace {

class BusControlTest : public testing::Test {
protected:
    /// The answer, or the message of the refusal.
    std::string call(const char* method, GVariant* arguments = g_variant_new_tuple(nullptr, 0)) {
        const OwnedVariant owner(g_variant_ref_sink(arguments));
        failure = {};
        const OwnedVariant answer = object.answer(method, owner.get(), failure);
        if (!answer) return failure.message;
        const char* json = nullptr;
        g_variant_get(answer.get(), "(&s)", &json);
        return json;
    }

    RemoteAnswer given;
    RemoteRequest asked;
    RemoteControl::Server server = [this](const RemoteRequest& request) {
        asked = request;
        return given;
    };
    ExportedObject object{nullptr, BusControl::controlDescription(server)};
    ExportedObject::Failure failure;
};

TEST_F(BusControlTest, MethodGivesTheCommandAndItsArgument) {
    given.value = {{"done", true}};
    EXPECT_NE(call("Toggle", g_variant_new("(s)", "editor")).find("\"done\": true"),
              std::string::npos);
    EXPECT_EQ(asked.command, "toggle");
    EXPECT_EQ(asked.argument, "editor");
    call("Status");
    EXPECT_EQ(asked.command, "status");
    EXPECT_EQ(asked.argument, "");
}

TEST_F(BusControlTest, AnswerWithNamesThatAreNoUtf8KeepsAllElse) {
    given.value = {{"findings", Value::Array{Value::Dictionary{{"text", "caf\xE9 is running"}},
                                             Value("more")}}};
    const std::string json = call("Doctor");
    EXPECT_NE(json.find("caf\uFFFD is running"), std::string::npos) << json;
    EXPECT_NE(json.find("more"), std::string::npos) << json;
}

TEST_F(BusControlTest, RefusalWithANameThatIsNoUtf8IsTold) {
    given.error = "caf\xE9 is not installed.";
    EXPECT_EQ(call("Untuck"), "caf\uFFFD is not installed.");
    EXPECT_EQ(failure.name, "com.tessivane.quorvel.Error.Refused");
}

TEST_F(BusControlTest, OtherArgumentsThanTheMethodsReachNobody) {
    call("Toggle", g_variant_new("(i)", 5));
    EXPECT_EQ(failure.name, "org.freedesktop.DBus.Error.InvalidArgs");
    call("Toggle");
    EXPECT_EQ(failure.name, "org.freedesktop.DBus.Error.InvalidArgs");
    call("Status", g_variant_new("(s)", "x"));
    EXPECT_EQ(failure.name, "org.freedesktop.DBus.Error.InvalidArgs");
    call("Explode");
    EXPECT_EQ(failure.name, "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(asked.command, "");
}

TEST_F(BusControlTest, ProgramThatIsEndingRefuses) {
    server = nullptr;
    EXPECT_EQ(call("Status"), "Quorvel is ending.");
}

}  // namespace
}  // namespace quorvel::native
