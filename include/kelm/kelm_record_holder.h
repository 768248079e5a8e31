/// \file
/// kelm_record_holder<R>: a record of type R that a decode entry point fills, released with
/// kelmAsnFreeObj when the holder goes out of scope.
///
///     kelm_record_holder<attrlist_s_t> list;
///     if (kelmAsnDecodeObj(buffer, list.record()) == 0)
///         use(list.record());
///     // every string and array the decode allocated is released here, also after a failed
///     // decode, which may leave a partly filled record
///
/// Ownership: the holder owns what the record points at, never the record's own storage, which it
/// holds inline. It starts zeroed, as a record passed to a decode entry point should. It is neither
/// copied nor moved: the record's pointers would then be released twice.
#ifndef KELM_RECORD_HOLDER_H
#define KELM_RECORD_HOLDER_H

/// A record of type `Record` that a decode entry point fills, zeroed at the start and released
/// with kelmAsnFreeObj when the holder goes out of scope, whatever the decode returned.
template <class Record> class kelm_record_holder {
  public:
    /// A zeroed record.
    kelm_record_holder() : record_() {}
    /// Releases what the record points at with kelmAsnFreeObj.
    ~kelm_record_holder() { kelmAsnFreeObj(record_); }
    kelm_record_holder(const kelm_record_holder&) = delete;
    kelm_record_holder& operator=(const kelm_record_holder&) = delete;

    /// The record, to pass to a decode entry point.
    Record& record() { return record_; }
    /// The record, read only.
    const Record& record() const { return record_; }
    /// The record's fields.
    Record* operator->() { return &record_; }
    /// The record's fields, read only.
    const Record* operator->() const { return &record_; }

    /// Releases what the record points at and zeroes it, ready for another decode.
    void reset() {
        kelmAsnFreeObj(record_);
        record_ = Record();
    }

  private:
    Record record_;
};

#endif
