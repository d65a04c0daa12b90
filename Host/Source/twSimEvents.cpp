#include "twSimEvents.h"

void twSimEvents::post(const twSimEvent& event) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_events.push_back(event);
}

std::vector<twSimEvent> twSimEvents::all() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_events;
}

size_t twSimEvents::size() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_events.size();
}

size_t twSimEvents::countWithTitle(const std::string& text) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t n = 0;
    for (const auto& e : m_events)
        if (e.title.find(text) != std::string::npos) ++n;
    return n;
}

void twSimEvents::clear() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_events.clear();
}
