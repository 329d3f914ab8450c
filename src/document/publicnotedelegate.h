#pragma once

namespace quorvane {

class MyDocument;

/// Stands behind the view of a document's public note: whatever is edited there marks the document
/// as edited. It counts and never compares, so a note that is put back counts as well.
class PublicNoteDelegate final
{
public:
    explicit PublicNoteDelegate(MyDocument &document)
        : doc(document)
    { }

    void textDidChange();
    void textDidEndEditing();

private:
    MyDocument &doc;
};

} // namespace quorvane
