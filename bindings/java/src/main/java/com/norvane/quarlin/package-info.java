// SPDX-License-Identifier: Apache-2.0

/**
 * The devices of Quarlin rugged portable computers. Each family has a package of its own; here is what they share:
 * {@link com.norvane.quarlin.Library the native library}, {@link com.norvane.quarlin.ResultCode result codes} and
 * {@link com.norvane.quarlin.QuarlinException the exception} that tells of them.
 *
 * <p>In each family package an application uses the {@link java.lang.AutoCloseable} classes and immutable values. The
 * classes of native methods underneath are public for programs that follow the C interface function by function; the
 * two ways should not be mixed for one device.
 *
 * <p>Listeners are called on one daemon thread named {@code quarlin-events}, whichever device an event is from: a slow
 * one delays the others, and no thread of the native library ever waits for one. Its queue has no bound. What a
 * listener throws goes to the thread's uncaught-exception handler, and the next one is called.
 */
package com.norvane.quarlin;
