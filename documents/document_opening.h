#pragma once

#include "documents/document_kind.h"

/// Brings the form of that kind forward with that one document, its lines in sight. Tells the operator when the right
/// is missing, when the document has gone meanwhile, and when the form is in the midst of an entry, which stays.
/// @throws StoreError
void showDocument(DocumentKind kind, const QString& number);
