// Network addresses, named objects, object and name lists and the object database header,
// declared as field tables.
#include "ekobj_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/ekobj_asn.cpp";

} // namespace

// Both arrays are written at their full size whatever they hold, and read back as exactly that
// many bytes.
KELM_DEFINE_RECORD_TYPE(kelm_ip_addr_type, asn_ip_addr_t, ip_addr_s_t, kelm_site(kSource, 56),
                        kelm_no_quirks, KELM_SIGNED_VIEW(addr_type), KELM_FIELD(addr_string),
                        KELM_FIELD(addr_bytes));

KELM_DEFINE_RECORD_TYPE(kelm_ekobj_type, asn_ekobj_t, ekobj_t, kelm_site(kSource, 67),
                        kelm_no_quirks, KELM_FIELD(name), KELM_SIGNED_VIEW(first_number),
                        KELM_SIGNED_VIEW(second_number), KELM_BYTES(data, data_length));

KELM_DEFINE_RECORD_TYPE(kelm_ekobj_list_type, asn_ekobj_list_t, ekobj_list_s_t,
                        kelm_site(kSource, 78), kelm_no_quirks, KELM_LIST(objs, obj_count),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekobj_name_list_type, asn_ekobj_name_list_t, ekobj_name_list_s_t,
                        kelm_site(kSource, 89), kelm_no_quirks, KELM_LIST(names, name_count),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekobj_db_header_type, asn_ekobj_db_header_t, ekobj_db_header_s_t,
                        kelm_site(kSource, 100), kelm_no_quirks, KELM_SIGNED_VIEW(db_number),
                        KELM_LIST(names, name_count), KELM_FIELD(attrs));
