#pragma once

/// Includes what the headers that `quillon9 generate` writes need.

#include "quillon9/binding/typed_collections.h"
#include "quillon9/generated/any_element_col.h"
#include "quillon9/generated/bound_content.h"
#include "quillon9/generated/bound_object.h"
#include "quillon9/generated/class_tables.h"
#include "quillon9/generated/enum_col.h"
#include "quillon9/generated/id_index.h"
#include "quillon9/generated/object_col.h"
#include "quillon9/generated/property_ref.h"
#include "quillon9/generated/qualified_name.h"
#include "quillon9/generated/rows.h"
#include "quillon9/generated/value_element.h"
#include "quillon9/generated/xml_source.h"
