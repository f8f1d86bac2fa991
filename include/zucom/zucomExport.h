/**
 * @file
 * Marks what the shared library exports; everything else in it is hidden.
 */
#ifndef ZUCOM_EXPORT_H
#define ZUCOM_EXPORT_H

/** Put before a function, class or object that belongs to the binary interface. */
#define ZUCOM_API __attribute__((visibility("default")))

#endif
