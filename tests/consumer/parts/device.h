// The application's own device: whole numbers by parameter id.
#ifndef FRONTPANEL_CONSUMER_PARTS_DEVICE_H
#define FRONTPANEL_CONSUMER_PARTS_DEVICE_H

#include <frontpanel_data/data_interface.h>

#include <cstring>
#include <map>

class Device : public Data_interface {
public:
    int Get(unsigned int pid, unsigned int, void* buffer, unsigned int length) override {
        std::memcpy(buffer, &values[pid], length < sizeof(int) ? length : sizeof(int));
        return 0;
    }
    int Set(unsigned int pid, unsigned int, const void* buffer, unsigned int length) override {
        std::memcpy(&values[pid], buffer, length < sizeof(int) ? length : sizeof(int));
        return 0;
    }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }

    std::map<unsigned int, int> values;
};

#endif
