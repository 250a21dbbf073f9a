#include <frontpanel_menu/menu_check.h>

#include <set>

namespace frontpanel {
namespace {

class No_device : public Data_interface {
public:
    int Get(unsigned int /*pid*/, unsigned int /*varidx*/, void* /*buffer*/,
            unsigned int /*length*/) override {
        return FAILED;
    }
    int Set(unsigned int /*pid*/, unsigned int /*varidx*/, const void* /*buffer*/,
            unsigned int /*length*/) override {
        return FAILED;
    }
    int Get_prod_list(PROD_LIST_S* /*list*/, bool /*remote*/, bool /*refresh*/) override {
        return FAILED;
    }
    int Set_product_id(prod_id_t /*product*/) override { return FAILED; }
    int Get_prod_alias_name(char* /*name*/, prod_id_t /*product*/) override { return FAILED; }

private:
    static constexpr int FAILED = 1;
};

}  // namespace

// A folder that several menus mount is read once.
std::vector<std::string> preset_mistakes(const Menu& menu) {
    std::set<std::string> folders;
    std::vector<std::string> all;
    for (const std::unique_ptr<Mounted_menu>& mounted : menu.mounted_menus()) {
        if (folders.insert(mounted->folder()).second) {
            const std::vector<std::string> mistakes = mounted->mistakes();
            all.insert(all.end(), mistakes.begin(), mistakes.end());
        }
    }
    return all;
}

Menu_check check_menu(Menu_document& document, const Loading& loading) {
    Menu_check result;
    No_device device;
    try {
        const Loaded_menu loaded = load_menu(document, device, loading);
        result.entry_count = loaded.menu->entry_count();
        result.errors = preset_mistakes(*loaded.menu);
    } catch (const Input_errors&) {
        result.errors = document.problems().errors();
    }
    result.warnings = document.problems().warnings();
    return result;
}

}  // namespace frontpanel
