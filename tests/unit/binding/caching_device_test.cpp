// The device behind a menu's cache: what passes through, what is kept, and when the device is asked.
#include <frontpanel_binding/caching_device.h>

#include <gmock/gmock.h>

#include <vector>

#include "support/fake_device.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using support::Fake_device;
using support::index_of;
using support::key_of;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int MODE = 100;
constexpr unsigned int TITLE = 200;

class Caching_device_test : public testing::Test {
protected:
    void add(const std::string& source) {
        const Compile_result result = registry->compile(source);
        ASSERT_TRUE(result.ok()) << result.error->text();
        engine.addBindingList(result.list);
    }
    int evaluate() {
        int flags = Binding::EXECUTE_FLAG;
        return engine.evaluateAllBindingExpressions(&flags);
    }
    int visibility() {
        int value = 0;
        engine.getSuggestion(SUGGESTION_VISIBILITY, &value);
        return value;
    }
    EntryModelCache& record(const var_index_s& key) { return registry->var_index_map()->at(key); }
    int read_number(unsigned int pid, unsigned int varidx) {
        int32_t value = 0;
        return cache.Get(pid, varidx, &value, sizeof value);
    }
    int read_text(unsigned int pid, unsigned int varidx) {
        char text[257] = {};
        return cache.Get(pid, varidx, text, sizeof text);
    }
    int write_number(unsigned int pid, unsigned int varidx, int32_t value) {
        return cache.Set(pid, varidx, &value, sizeof value);
    }

    Fake_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
    Caching_device cache{device, registry};
    Expression_binding engine{registry};
    const var_index_s mode = key_of(INTEGER, MODE, index_of({}));
    const var_index_s title = key_of(STRING, TITLE, index_of({}));
};

TEST_F(Caching_device_test, EveryOperationReachesTheDeviceAndReturnsItsResult) {
    device.expect_get_integer(MODE, 2, 7, 0);
    device.expect_set_integer(MODE, 2, 8, 42);
    device.expect_prod_list(true, false, {}, 3);
    device.expect_product_id(9, 4);
    device.expect_alias(9, "Amp", 5);
    device.expect_current_selection_local(6);
    device.expect_use_selection_local(true);
    device.expect_socket(3, 7);

    int32_t value = 0;
    EXPECT_EQ(cache.Get(MODE, 2, &value, sizeof value), 0);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(write_number(MODE, 2, 8), 42);
    PROD_LIST_S products[16] = {};
    EXPECT_EQ(cache.Get_prod_list(products, true, false), 3);
    EXPECT_EQ(cache.Set_product_id(9), 4);
    char alias[100] = {};
    EXPECT_EQ(cache.Get_prod_alias_name(alias, 9), 5);
    EXPECT_STREQ(alias, "Amp");
    EXPECT_EQ(cache.Is_current_selection_local(), 6);
    EXPECT_TRUE(cache.Is_use_selection_local());
    EXPECT_EQ(cache.setCurrentRouterSocket(3), 7);
}

class Plain_interface : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void*, unsigned int) override { return 0; }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 0; }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 0; }
    int Set_product_id(prod_id_t) override { return 0; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 0; }
};

TEST_F(Caching_device_test, TheResultOfTheLatestReadOfEachParameterIsKnown) {
    EXPECT_FALSE(cache.last_read_failed(MODE, 2));
    device.expect_get_integer(MODE, 2, 7, 3);
    read_number(MODE, 2);
    EXPECT_TRUE(cache.last_read_failed(MODE, 2));
    EXPECT_FALSE(cache.last_read_failed(MODE, 0));
    device.expect_set_integer(MODE, 2, 8, 0);
    write_number(MODE, 2, 8);
    EXPECT_TRUE(cache.last_read_failed(MODE, 2)) << "a write is no read";
    device.expect_get_integer(MODE, 2, 8, 0);
    read_number(MODE, 2);
    EXPECT_FALSE(cache.last_read_failed(MODE, 2));
}

TEST_F(Caching_device_test, ADeviceWithoutSocketsStaysAtTheLocalUnit) {
    Plain_interface plain;
    plain.go_home = 1;
    plain.lock_and_dim = 2;
    plain.time_for_timeout = 3;
    Caching_device wrapper(plain, std::make_shared<Binding_registry>());

    EXPECT_EQ(wrapper.Is_current_selection_local(), 0);
    EXPECT_FALSE(wrapper.Is_use_selection_local());
    EXPECT_EQ(wrapper.setCurrentRouterSocket(0), 0);
    EXPECT_NE(wrapper.setCurrentRouterSocket(1), 0);
    EXPECT_EQ(wrapper.go_home, 1);
    EXPECT_EQ(wrapper.lock_and_dim, 2);
    EXPECT_EQ(wrapper.time_for_timeout, 3);
}

TEST_F(Caching_device_test, ReadsAndWritesKeepTheRecordsCurrent) {
    registry->watch(mode);
    registry->watch(title);
    device.answer_get_integer(MODE, 0, 5);
    device.answer_get_text(TITLE, 0, "Studio");
    EXPECT_EQ(registry->value(mode), std::nullopt);

    read_number(MODE, 0);
    read_text(TITLE, 0);
    EXPECT_EQ(record(mode).getInt(), 5);
    EXPECT_STREQ(record(title).getString(), "Studio");

    device.expect_set_integer(MODE, 0, 6);
    device.expect_set(TITLE, 0, "Hall");
    write_number(MODE, 0, 6);
    cache.Set(TITLE, 0, "Hall!", 4);
    EXPECT_EQ(record(mode).getInt(), 6);
    EXPECT_STREQ(record(title).getString(), "Hall");
    device.expect_set(TITLE, 0, "");
    cache.Set(TITLE, 0, nullptr, 0);
    EXPECT_STREQ(record(title).getString(), "");
}

TEST_F(Caching_device_test, ALongTextIsKeptInFullBesideItsRecord) {
    registry->watch(title);
    const std::string longest(256, 'x');
    device.answer_get_text(TITLE, 0, longest);
    read_text(TITLE, 0);

    EXPECT_EQ(registry->value(title)->s, longest);
    EXPECT_EQ(record(title).getString(), std::string(31, 'x'));
}

TEST_F(Caching_device_test, ATextThatFillsAShortBufferIsNotTakenForTheWhole) {
    registry->watch(title);
    device.expect_get(TITLE, 0, 4, "Stud");
    device.expect_get(TITLE, 0, 4, std::string("Ab\0", 3));
    char text[4] = {};
    cache.Get(TITLE, 0, text, sizeof text);
    EXPECT_EQ(registry->value(title), std::nullopt);
    cache.Get(TITLE, 0, text, sizeof text);
    EXPECT_EQ(registry->value(title)->s, "Ab");
}

TEST_F(Caching_device_test, AFailingAccessLeavesTheValueAsItWas) {
    registry->watch(mode);
    device.expect_set_integer(MODE, 0, 6);
    write_number(MODE, 0, 6);
    device.expect_get_integer(MODE, 0, 77, 42);
    device.expect_set_integer(MODE, 0, 8, 43);

    EXPECT_EQ(read_number(MODE, 0), 42);
    EXPECT_EQ(write_number(MODE, 0, 8), 43);
    EXPECT_EQ(record(mode).getInt(), 6);
    EXPECT_EQ(registry->value(mode)->i, 6);
}

TEST_F(Caching_device_test, AllNamesOfAVariableAreKeptAlike) {
    const var_index_s names[] = {mode, key_of(INTEGER, MODE, index_of({0})),
                                 key_of(INTEGER, MODE, index_of({0, 0}))};
    for (const var_index_s& name : names) {
        registry->watch(name);
    }
    device.expect_set_integer(MODE, 0, 6);
    write_number(MODE, 0, 6);
    EXPECT_EQ(registry->var_index_map()->size(), 3u);
    for (const var_index_s& name : names) {
        EXPECT_EQ(record(name).getInt(), 6);
    }
}

TEST_F(Caching_device_test, ANameThatIsAddedLaterHasTheValueAtOnce) {
    registry->watch(mode);
    device.expect_set_integer(MODE, 0, 6);
    write_number(MODE, 0, 6);
    registry->watch(key_of(INTEGER, MODE, index_of({0})));

    EXPECT_EQ(record(key_of(INTEGER, MODE, index_of({0}))).getInt(), 6);
}

// A commit inserts a record for a parameter that is not in the map.
TEST_F(Caching_device_test, ARecordThatACommitLeftIsFilled) {
    (*registry->var_index_map())[mode];
    registry->watch(mode);
    device.expect_set_integer(MODE, 0, 6);
    write_number(MODE, 0, 6);

    EXPECT_EQ(record(mode).model_type, INTEGER);
    EXPECT_EQ(record(mode).getInt(), 6);
}

// ---- when the device is asked

TEST_F(Caching_device_test, AKnownValueIsNotAskedForAgain) {
    add("visible if [100] == 5 or [100] == 6");
    device.expect_get_integer(MODE, 0, 5);
    evaluate();
    evaluate();
    EXPECT_EQ(visibility(), VIS_TRUE);

    device.expect_set_integer(MODE, 0, 4);
    write_number(MODE, 0, 4);
    evaluate();
    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Caching_device_test, AWriteOfAnotherSizeIsAskedFor) {
    add("visible if [100] == 5");
    device.expect_get_integer(MODE, 0, 4);
    evaluate();
    const char byte = 5;
    device.expect_set(MODE, 0, std::string(1, byte));
    cache.Set(MODE, 0, &byte, sizeof byte);

    device.expect_get_integer(MODE, 0, 5);
    evaluate();
    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Caching_device_test, AfterAFailureTheDeviceIsAskedAgain) {
    add("visible if [100] == 5");
    device.expect_get_integer(MODE, 0, 5);
    evaluate();
    device.expect_get_integer(MODE, 0, 0, 42);
    read_number(MODE, 0);

    device.expect_get_integer(MODE, 0, 0, 42);
    EXPECT_EQ(evaluate(), -1);
    EXPECT_EQ(visibility(), VIS_TRUE);
    device.expect_get_integer(MODE, 0, 4);
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Caching_device_test, ValuesAreThoseOfTheSelectedSocket) {
    add("visible if [100] == 5");
    device.expect_get_integer(MODE, 0, 5);
    evaluate();
    device.answer_socket(3);
    device.answer_socket(0);
    cache.setCurrentRouterSocket(3);
    cache.setCurrentRouterSocket(0);
    evaluate();
    EXPECT_EQ(visibility(), VIS_TRUE);

    cache.setCurrentRouterSocket(3);
    device.expect_get_integer(MODE, 0, 6);
    evaluate();
    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Caching_device_test, ASocketThatCannotBeSelectedChangesNothing) {
    add("visible if [100] == 5");
    device.expect_get_integer(MODE, 0, 5);
    evaluate();
    device.expect_socket(3, 1);
    cache.setCurrentRouterSocket(3);

    evaluate();
    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Caching_device_test, WithoutTheWrapperEveryEvaluationAsksTheDevice) {
    const auto plain = std::make_shared<Binding_registry>(&device);
    Expression_binding other(plain);
    other.addBindingList(plain->compile("visible if [100] == 5").list);
    {
        Caching_device passing(device, plain);
        EXPECT_EQ(plain->interface(), &passing);
        device.expect_get_integer(MODE, 0, 5);
        int flags = Binding::EXECUTE_FLAG;
        other.evaluateAllBindingExpressions(&flags);
    }
    EXPECT_EQ(plain->interface(), &device);
    for (int i = 0; i < 2; ++i) {
        device.expect_get_integer(MODE, 0, 5);
        int flags = Binding::EXECUTE_FLAG;
        other.evaluateAllBindingExpressions(&flags);
    }
}

// ---- the poll

std::vector<unsigned int> pids(const std::vector<var_index_s>& keys) {
    std::vector<unsigned int> all;
    for (const var_index_s& key : keys) {
        all.push_back(key.var);
    }
    return all;
}

TEST_F(Caching_device_test, APollAsksForWhatSomebodyReadsOrWatches) {
    add("visible if [100] == 5 and [100.0] == 5; set [300] = 1");
    registry->watch(title);
    (*registry->var_index_map())[key_of(INTEGER, 400, index_of({}))];
    Expression_binding owner(registry);
    const Index_t none = index_of({});
    owner.setControlInfo(500, &none, Data_entry::RANGE_LEAF);

    device.expect_get_integer(MODE, 0, 5);
    device.expect_get_text(TITLE, 0, "Studio");
    EXPECT_THAT(pids(registry->poll()), ElementsAre(MODE, TITLE));
    device.expect_get_integer(MODE, 0, 5);
    device.expect_get_text(TITLE, 0, "Hall");
    EXPECT_THAT(pids(registry->poll()), ElementsAre(TITLE));
    EXPECT_EQ(registry->value(title)->s, "Hall");
}

TEST_F(Caching_device_test, APollEndsForAParameterThatNobodyNeedsAnyMore) {
    {
        Expression_binding passing(registry);
        passing.addBindingList(registry->compile("visible if [100] == 5").list);
    }
    registry->watch(title);
    registry->watch(title);
    registry->unwatch(title);
    device.expect_get_text(TITLE, 0, "Studio");
    registry->poll();
    registry->unwatch(title);
    registry->unwatch(title);
    registry->unwatch(mode);
    EXPECT_THAT(registry->poll(), IsEmpty());
}

TEST_F(Caching_device_test, AFailingPollLeavesTheValueAndTellsWhenItCanBeReadAgain) {
    registry->watch(mode);
    device.expect_get_integer(MODE, 0, 5);
    registry->poll();
    device.expect_get_integer(MODE, 0, 0, 42);
    EXPECT_THAT(registry->poll(), IsEmpty());
    EXPECT_EQ(registry->value(mode)->i, 5);
    device.expect_get_integer(MODE, 0, 5);
    EXPECT_THAT(pids(registry->poll()), ElementsAre(MODE));
}

TEST_F(Caching_device_test, AValueThatAPollBringsIsSeenWithoutAskingAgain) {
    add("visible if [100] == 5");
    device.expect_get_integer(MODE, 0, 5);
    registry->poll();
    evaluate();

    EXPECT_EQ(visibility(), VIS_TRUE);
}

// ---- slot entries select sockets through it

TEST(Caching_device_sockets, ASlotEntryFindsTheSocketsOfTheDevice) {
    Memory_device device;
    const auto registry = std::make_shared<Binding_registry>(&device);
    Caching_device cache(device, registry);
    Data_interface* const iface = &cache;

    auto* const sockets = dynamic_cast<Pdt_data_access*>(iface);
    ASSERT_NE(sockets, nullptr);
    EXPECT_EQ(sockets->setCurrentRouterSocket(3), 0);
    EXPECT_EQ(device.current_socket(), 3);
}

// A device that answers from memory.
class Remembering_device : public Fake_device, public Value_states {
public:
    std::optional<Value_state> state(uint32_t pid, uint32_t varidx) const override {
        Value_state state;
        state.reason = std::to_string(pid) + "." + std::to_string(varidx);
        return pid == MODE ? std::optional<Value_state>(state) : std::nullopt;
    }
};

// Answers every access, and has the state that the test sets.
class Changing_device : public Data_interface, public Value_states {
public:
    std::optional<Value_state> state(uint32_t /*pid*/, uint32_t /*varidx*/) const override {
        return m_state;
    }
    int Get(unsigned int /*pid*/, unsigned int /*varidx*/, void* /*buffer*/,
            unsigned int /*length*/) override {
        return 0;
    }
    int Set(unsigned int /*pid*/, unsigned int /*varidx*/, const void* /*buffer*/,
            unsigned int /*length*/) override {
        m_state.is_writing = !m_is_quick;
        return 0;
    }
    int Get_prod_list(PROD_LIST_S* /*list*/, bool /*remote*/, bool /*refresh*/) override {
        return 0;
    }
    int Set_product_id(prod_id_t /*product*/) override { return 0; }
    int Get_prod_alias_name(char* /*name*/, prod_id_t /*product*/) override { return 0; }

    Value_state m_state;
    bool m_is_quick = false;  // a write is over when `Set` returns
};

TEST(Caching_device_states, AValueThatWasOldWhenItWasReadIsOldUntilItIsReadAgain) {
    Changing_device device;
    Caching_device access(device, std::make_shared<Binding_registry>(&device));
    int32_t value = 0;
    device.m_state.freshness = Freshness::OLD;
    device.m_state.reason = "away";
    access.Get(MODE, 0, &value, sizeof value);
    device.m_state = {};
    EXPECT_EQ(access.state(MODE, 0)->freshness, Freshness::OLD);
    EXPECT_EQ(access.state(MODE, 0)->reason, "away");
    access.Get(MODE, 0, &value, sizeof value);
    EXPECT_EQ(access.state(MODE, 0)->freshness, Freshness::FRESH);
    device.m_state.freshness = Freshness::OLD;
    EXPECT_EQ(access.state(MODE, 0)->freshness, Freshness::OLD);
}

TEST(Caching_device_states, AValueThatWasWrittenIsOnItsWayUntilItIsReadAgain) {
    Changing_device device;
    Caching_device access(device, std::make_shared<Binding_registry>(&device));
    int32_t value = 0;
    access.Set(MODE, 0, &value, sizeof value);
    device.m_state = {};  // done, or refused: then this is no longer the value of the device
    EXPECT_TRUE(access.state(MODE, 0)->is_writing);
    access.Get(MODE, 0, &value, sizeof value);
    EXPECT_FALSE(access.state(MODE, 0)->is_writing);
}

TEST(Caching_device_states, AValueThatMayHaveBeenRefusedAlreadyIsOnItsWayUntilItIsReadAgain) {
    Changing_device device;
    device.m_is_quick = true;
    Caching_device access(device, std::make_shared<Binding_registry>(&device));
    int32_t value = 0;
    access.Set(MODE, 0, &value, sizeof value);
    EXPECT_TRUE(access.state(MODE, 0)->is_writing);
    access.Get(MODE, 0, &value, sizeof value);
    EXPECT_FALSE(access.state(MODE, 0)->is_writing);
}

TEST(Caching_device_states, AreThoseOfTheDeviceIfItKnowsThem) {
    Remembering_device device;
    const Caching_device access(device, std::make_shared<Binding_registry>());
    ASSERT_TRUE(access.state(MODE, 3));
    EXPECT_EQ(access.state(MODE, 3)->reason, "100.3");
    EXPECT_FALSE(access.state(TITLE, 0));
    Fake_device other;
    const Caching_device plain(other, std::make_shared<Binding_registry>());
    EXPECT_FALSE(plain.state(MODE, 3));
}

}  // namespace
