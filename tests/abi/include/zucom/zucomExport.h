/**
 * @file
 * Marks what the shared library exports; everything else in it is hidden.
 */
#ifndef ZUCOM_EXPORT_H
#define ZUCOM_EXPORT_H

/** Put before a function, class or object that belongs to the binary interface. */
#define ZUCOM_API __attribute__((visibility("default")))

/** Put before a private member of an exported class: not part of the binary interface, free to change. */
#define ZUCOM_LOCAL __attribute__((visibility("hidden")))

#endif
