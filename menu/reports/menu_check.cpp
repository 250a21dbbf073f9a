#include <frontpanel_menu/menu_check.h>

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

Menu_check check_menu(Menu_document& document, const Loading& loading) {
    Menu_check result;
    No_device device;
    try {
        result.entry_count = load_menu(document, device, loading).menu->entry_count();
    } catch (const Input_errors&) {
        result.errors = document.problems().errors();
    }
    result.warnings = document.problems().warnings();
    return result;
}

}  // namespace frontpanel
