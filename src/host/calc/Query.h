// Interfaces of the office's objects.
#pragma once

#include <com/sun/star/uno/Reference.hxx>

namespace rowlark::calc {

// That interface of an object; throws a RuntimeException of the office where it has none.
template <class Interface, class From>
com::sun::star::uno::Reference<Interface> As(const From& from) {
  return com::sun::star::uno::Reference<Interface>(from, com::sun::star::uno::UNO_QUERY_THROW);
}

}  // namespace rowlark::calc
