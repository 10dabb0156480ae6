// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Question.h"

#include <gtkmm/messagedialog.h>

#include <utility>

#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

void ask(Gtk::Window& parent, const Question& question, std::function<void()> yes,
         std::function<void()> no) {
    auto* const dialog = new Gtk::MessageDialog(
        parent, question.text, false, Gtk::MessageType::QUESTION, Gtk::ButtonsType::NONE, true);
    dialog->set_secondary_text(question.detail);
    const auto addButton = [dialog](const std::string& label, Gtk::ResponseType response) {
        Gtk::Button* const button = dialog->add_button(label, response);
        setSpokenName(*button, label); // twice otherwise
        return button;
    };
    addButton(_("Cancel"), Gtk::ResponseType::CANCEL);
    addButton(question.yes, Gtk::ResponseType::YES)->add_css_class("destructive-action");
    dialog->set_default_response(Gtk::ResponseType::CANCEL);
    // The dialogue goes once its signal is through.
    dialog->signal_response().connect(
        [dialog, yes = std::move(yes), no = std::move(no)](int response) {
            dialog->set_visible(false);
            Glib::signal_idle().connect_once(
                [dialog, call = response == Gtk::ResponseType::YES ? yes : no] {
                    delete dialog;
                    if (call)
                        call();
                });
        });
    dialog->set_visible(true);
}

} // namespace quarner::window
