/// \file
/// kelmasn: ASN.1 DER encoding of the access-control product's records.
///
/// Including this header gives a caller every exported declaration: the runtime's buffers,
/// statuses and exceptions, the code-set converters, the DER inspection functions, and the
/// version macros of kelmasn_version.h.
#ifndef KELM_KELMASN_H
#define KELM_KELMASN_H

#include "aclidl.h"
#include "actionidl.h"
#include "asnbase.h"
#include "attrlist.h"
#include "aznserver.h"
#include "ekaclobjs.h"
#include "ekobj.h"
#include "ekobjs.h"
#include "ekpopobjs.h"
#include "eksvr_enc.h"
#include "kelm_asn_buffer.h"
#include "kelm_der.h"
#include "kelm_entry.h"
#include "kelm_record_holder.h"
#include "kelmasn_version.h"
#include "namevalue.h"
#include "pobj.h"
#include "principal.h"
#include "zuauditidl.h"

#endif
