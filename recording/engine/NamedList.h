#pragma once
// A read-only list of names with a by-name lookup, the shape in which the
// recorder offers its devices, pins, profiles and compressors.
//
// Thread contract: a plain value; not shared between threads.

#include <QString>
#include <QStringList>

namespace mirabend {

class NamedList {
public:
    NamedList() = default;
    explicit NamedList(QStringList names)
        : m_names(std::move(names))
    {
    }

    int Count() const { return static_cast<int>(m_names.size()); }
    // The name at `index`, or "" outside the list.
    QString Item(int index) const { return index >= 0 && index < Count() ? m_names.at(index) : QString(); }
    // The index of the entry that equals `name` exactly, or -1.
    int FindByName(const QString& name) const { return static_cast<int>(m_names.indexOf(name)); }
    const QStringList& Names() const { return m_names; }

private:
    QStringList m_names;
};

class CompressorList : public NamedList {
public:
    using NamedList::NamedList;
    // Shows the settings page of a compressor. The recorder draws no
    // windows: the options window shows the pages CompressorCatalog::
    // videoSettings describes, so the answer here is always false.
    bool ShowPropertyPage(int index) const
    {
        (void)index;
        return false;
    }
};

} // namespace mirabend
