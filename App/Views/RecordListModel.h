#pragma once

#include <algorithm>
#include <concepts>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>

#include "App/Views/ListEdits.h"
#include "App/Views/Text.h"

namespace ravik::app {

/// What QML knows of a list of records: each role reaches a delegate as a required property of that name.
class RecordModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a view owns its lists")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    using QAbstractListModel::QAbstractListModel;
    int count() const { return rowCount({}); }

Q_SIGNALS:
    void countChanged();
};

/// A list of the core's records. A new list replaces the old one in place: rows that stay keep their delegates, rows
/// that change places move, and only what changed in a row is told.
template <typename Record>
class RecordListModel : public RecordModel {
public:
    /// A name in QML, and what to read of the record: a member, a member function or a function of the record.
    struct Role {
        template <typename Read>
        Role(const char* roleName, Read read)
            : name(roleName), value([read](const Record& record) { return variant(std::invoke(read, record)); }) {}

        QByteArray name;
        std::function<QVariant(const Record&)> value;
    };
    /// What stays the same about a row while everything else of it changes.
    using Id = std::function<std::string(const Record&)>;

    /// `roles` is a table that outlives the model.
    RecordListModel(std::span<const Role> roles, Id id, QObject* parent)
        : RecordModel(parent), m_roles(roles), m_id(std::move(id)) {}

    void set(std::vector<Record> records) {
        const int before = count();
        std::vector<std::string> ids;
        ids.reserve(records.size());
        for (const auto& record : records) ids.push_back(m_id(record));
        for (const auto& edit : listEdits(m_ids, ids)) apply(edit, records, ids);
        for (std::size_t i = 0; i < records.size(); ++i) update(int(i), std::move(records[i]));
        if (count() != before) Q_EMIT countChanged();
    }

    const std::vector<Record>& records() const { return m_records; }

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : int(m_records.size()); }

    QVariant data(const QModelIndex& index, int role) const override {
        const int place = role - Qt::UserRole;
        if (!checkIndex(index, CheckIndexOption::IndexIsValid) || place < 0 || place >= int(m_roles.size())) return {};
        return m_roles[std::size_t(place)].value(m_records[std::size_t(index.row())]);
    }

    QHash<int, QByteArray> roleNames() const override {
        QHash<int, QByteArray> names;
        for (std::size_t i = 0; i < m_roles.size(); ++i) names.insert(Qt::UserRole + int(i), m_roles[i].name);
        return names;
    }

private:
    template <typename Value>
    static QVariant variant(const Value& value) {
        if constexpr (std::convertible_to<const Value&, std::string_view>) {
            return text(std::string_view(value));
        } else if constexpr (std::same_as<Value, std::optional<std::string>>) {
            return text(value);
        } else {
            return QVariant::fromValue(value);
        }
    }

    void apply(const ListEdit& edit, const std::vector<Record>& records, const std::vector<std::string>& ids) {
        const auto at = std::ptrdiff_t(edit.at), count = std::ptrdiff_t(edit.count), to = std::ptrdiff_t(edit.to);
        switch (edit.kind) {
            case ListEdit::Kind::remove:
                beginRemoveRows({}, int(at), int(at + count - 1));
                m_records.erase(m_records.begin() + at, m_records.begin() + at + count);
                m_ids.erase(m_ids.begin() + at, m_ids.begin() + at + count);
                endRemoveRows();
                break;
            case ListEdit::Kind::move:
                beginMoveRows({}, int(at), int(at), {}, int(to > at ? to + 1 : to));
                shift(m_records, at, to);
                shift(m_ids, at, to);
                endMoveRows();
                break;
            case ListEdit::Kind::insert:
                beginInsertRows({}, int(at), int(at + count - 1));
                m_records.insert(m_records.begin() + at, records.begin() + at, records.begin() + at + count);
                m_ids.insert(m_ids.begin() + at, ids.begin() + at, ids.begin() + at + count);
                endInsertRows();
                break;
        }
    }

    template <typename T>
    static void shift(std::vector<T>& list, std::ptrdiff_t at, std::ptrdiff_t to) {
        const auto first = list.begin();
        if (at < to) {
            std::rotate(first + at, first + at + 1, first + to + 1);
        } else {
            std::rotate(first + to, first + at, first + at + 1);
        }
    }

    void update(int row, Record next) {
        Record& held = m_records[std::size_t(row)];
        if constexpr (std::equality_comparable<Record>) {
            if (held == next) return;
        }
        QList<int> changed;
        for (std::size_t i = 0; i < m_roles.size(); ++i) {
            if (m_roles[i].value(held) != m_roles[i].value(next)) changed.append(Qt::UserRole + int(i));
        }
        held = std::move(next);
        if (!changed.isEmpty()) Q_EMIT dataChanged(index(row), index(row), changed);
    }

    const std::span<const Role> m_roles;
    const Id m_id;
    std::vector<Record> m_records;
    /// Of the records, in their order.
    std::vector<std::string> m_ids;
};

}  // namespace ravik::app
