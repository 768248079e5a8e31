/// \file
/// The ASN.1 runtime: buffers and allocation hooks, statuses and exceptions, the code-set
/// converters, and the value objects built on them. Including this header gives every runtime
/// declaration.
#ifndef KELM_ASNBASE_H
#define KELM_ASNBASE_H

#include "asn_buffer.h"
#include "asn_charstring.h"
#include "asn_constructed.h"
#include "asn_lists.h"
#include "asn_object.h"
#include "asn_primitives.h"
#include "asn_status.h"
#include "codeset.h"

#endif
