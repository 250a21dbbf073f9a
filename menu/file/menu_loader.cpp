#include <frontpanel_menu/menu_loader.h>

#include <frontpanel_base/input_error.h>
#include "check/checks.h"
#include "file/builders.h"
#include "file/editor_items.h"
#include "file/item_builder.h"
#include "file/link_items.h"

namespace frontpanel {
namespace {

// What the products of the file may bring, whether they are simulated or not.
void expect_options_of_products(Load_context& context, const Json_value& file) {
    const auto device = file.find("device");
    if (!device || !device->is_object()) {
        return;
    }
    for (const Json_value& product : list_or_none(*device, "products")) {
        const auto options = product.is_object() ? product.find("options") : std::nullopt;
        if (options && options->is_object()) {
            for (const Json_value::Member& option : options->members()) {
                context.options.expect(option.name);
            }
        }
    }
}

// Before the items, whose options they are.
void declare_options(Load_context& context, const Json_value& file) {
    if (const auto options = file.find("options")) {
        context.options.declare(*options);
    }
    if (context.loading.simulator) {
        for (const Json_value& options : context.loading.simulator->product_options) {
            context.options.declare(options);
        }
    }
    context.problems.attempt([&] { expect_options_of_products(context, file); });
    for (const auto& [name, value] : context.loading.product_options) {
        context.options.declare(name, value);
    }
    context.menu.bindings()->set_product_options(
        context.options.library_values(),
        [names = context.options.names()](const std::string& name) {
            return names.library_name(name);
        });
}

void load_root(Load_context& context, const Json_value& menu) {
    menu.expect_members({member::NAME, member::DESCRIPTION, member::ITEMS});
    build_node(context, menu, {nullptr, 0});
}

// Only circles of writes are errors. The other checks only warn, and are skipped when nobody reads the warnings.
void check(const Load_context& context) {
    const Built_menu& built = context.built;
    Problems& problems = context.problems;
    if (!context.loading.has_all_warnings && problems.error_count() == 0 &&
        !has_circle_of_writes(built)) {
        return;
    }
    check_line_widths(built, problems);
    check_equal_names(built);
    check_circles(built, problems);
    check_reach(built);
    check_constants(built, problems);
}

void load(Load_context& context, Menu_document& document) {
    Problems& problems = context.problems;
    const Json_value file = document.root();
    file.expect_members({"options", "encoder", "device", "menu", "homescreen", "favourites"});
    if (const auto encoder = file.find("encoder")) {
        problems.attempt([&] { context.menu.encoder_settings() = encoder_settings_of(*encoder); });
    }
    problems.attempt([&] { context.device.load(file.member("device")); });
    document.release_parameters();  // before the items, which need as much memory again
    declare_options(context, file);
    context.menu.set_card_service(context.loading.card_service);
    problems.attempt([&] { load_root(context, file.member("menu")); });
    context.links.fill(context);
    load_home(context, file);
    context.links.set_escapes(context);
    check(context);
    if (context.menu.entry_count() > 0) {
        context.menu.share_shortcuts();
    }
}

}  // namespace

Loaded_menu load_menu(const std::string& file, Data_interface& device, const Loading& loading) {
    Menu_document document(file);
    return load_menu(document, device, loading);
}

Loaded_menu load_menu_text(const std::string& file, const std::string& text, Data_interface& device,
                           const Loading& loading) {
    Menu_document document(file, text);
    return load_menu(document, device, loading);
}

Loaded_menu load_menu(Menu_document& document, Data_interface& device, const Loading& loading) {
    Loaded_menu loaded{std::make_unique<Menu>(device), {}};
    Problems& problems = document.problems();
    Load_context context(*loaded.menu, problems, loading);
    problems.attempt([&] { load(context, document); });
    loaded.warnings = problems.warnings();
    if (problems.error_count() > 0) {
        std::vector<std::string> lines = problems.errors();
        lines.insert(lines.end(), loaded.warnings.begin(), loaded.warnings.end());
        throw Input_errors(lines);
    }
    return loaded;
}

}  // namespace frontpanel
