// What the toolkit reports of a window of a form, and keys before any window sees them.
#pragma once

#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/awt/XKeyHandler.hpp>
#include <com/sun/star/awt/XMouseListener.hpp>
#include <com/sun/star/awt/XTopWindowListener.hpp>
#include <com/sun/star/awt/XWindowListener.hpp>
#include <cppuhelper/implbase4.hxx>

#include <memory>
#include <utility>

#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class FormDialog;

class DialogListener final
    : public cppu::WeakImplHelper4<com::sun::star::awt::XTopWindowListener,
                                   com::sun::star::awt::XWindowListener, com::sun::star::awt::XMouseListener,
                                   com::sun::star::awt::XKeyHandler> {
 public:
  DialogListener(FormDialog& dialog, std::shared_ptr<Desk> desk) : dialog_(&dialog), desk_(std::move(desk)) {}

  // Throws what the office throws.
  void ListenTo(const com::sun::star::uno::Reference<com::sun::star::awt::XControl>& control,
                const Desk::Window& owner);
  // Nothing is reported any more.
  void Abandon() noexcept;

 private:
  template <class Action>
  void Do(Action action) noexcept;

  void SAL_CALL disposing(const com::sun::star::lang::EventObject& event) override;
  void SAL_CALL windowOpened(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL windowClosing(const com::sun::star::lang::EventObject&) override;
  void SAL_CALL windowClosed(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL windowMinimized(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL windowNormalized(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL windowActivated(const com::sun::star::lang::EventObject&) override;
  void SAL_CALL windowDeactivated(const com::sun::star::lang::EventObject&) override;
  void SAL_CALL windowResized(const com::sun::star::awt::WindowEvent&) override;
  void SAL_CALL windowMoved(const com::sun::star::awt::WindowEvent&) override;
  void SAL_CALL windowShown(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL windowHidden(const com::sun::star::lang::EventObject&) override {}
  void SAL_CALL mousePressed(const com::sun::star::awt::MouseEvent&) override {}
  void SAL_CALL mouseReleased(const com::sun::star::awt::MouseEvent&) override;
  void SAL_CALL mouseEntered(const com::sun::star::awt::MouseEvent&) override {}
  void SAL_CALL mouseExited(const com::sun::star::awt::MouseEvent&) override {}
  sal_Bool SAL_CALL keyPressed(const com::sun::star::awt::KeyEvent& event) override;
  sal_Bool SAL_CALL keyReleased(const com::sun::star::awt::KeyEvent& event) override;
  // The handlers of all windows are asked for every key.
  bool IsActive() const;

  FormDialog* dialog_;
  const std::shared_ptr<Desk> desk_;
  Desk::Window owner_;
};

}  // namespace rowlark::calc
