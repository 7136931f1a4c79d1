#include "Platform/Linux/LeverJournal.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "Core/Base/ReplaceFile.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr const char* fileName = "levers.json";

}  // namespace

LeverJournal::LeverJournal(std::filesystem::path folder, std::uint32_t uid, std::string boot)
    : m_folder(std::move(folder)), m_uid(uid), m_page{std::move(boot), {}} {}

std::optional<std::uint64_t> LeverJournal::add(LeverRecord record) {
    load();
    record.id = m_next;
    m_page.records.push_back(std::move(record));
    if (store()) return m_next++;
    m_page.records.pop_back();
    return {};
}

void LeverJournal::update(const LeverRecord& record) {
    const auto known = std::ranges::find(m_page.records, record.id, &LeverRecord::id);
    if (known == m_page.records.end()) return;
    *known = record;
    store();
}

void LeverJournal::remove(std::uint64_t id) {
    if (std::erase_if(m_page.records, [&](const LeverRecord& record) { return record.id == id; })) store();
}

const std::vector<LeverRecord>& LeverJournal::records() {
    load();
    return m_page.records;
}

std::vector<LeverRecord> LeverJournal::earlier() {
    std::vector<LeverRecord> found;
    for (const LeverRecord& record : records()) {
        if (record.id < m_firstOwn) found.push_back(record);
    }
    return found;
}

void LeverJournal::load() {
    if (std::exchange(m_loaded, true) || !ownsFolder()) return;
    const auto text = readFile((m_folder / fileName).native());
    auto page = text ? parsePage(*text) : std::nullopt;
    if (!page || page->boot != m_page.boot) return;
    m_page.records = std::move(page->records);
    for (const LeverRecord& record : m_page.records) m_next = std::max(m_next, record.id + 1);
    m_firstOwn = m_next;
}

bool LeverJournal::store() {
    if (!ownsFolder()) return false;
    const std::filesystem::path file = m_folder / fileName;
    if (m_page.records.empty()) return unlink(file.c_str()) == 0 || errno == ENOENT;
    return replaceFile(file, writePage(m_page));
}

bool LeverJournal::ownsFolder() const {
    std::error_code error;
    if (m_folder.empty() || !m_folder.is_absolute()) return false;
    std::filesystem::create_directories(m_folder.parent_path(), error);
    mkdir(m_folder.c_str(), 0700);
    struct stat folder {};
    return lstat(m_folder.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode) && folder.st_uid == m_uid &&
           (folder.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace ravik::platform
