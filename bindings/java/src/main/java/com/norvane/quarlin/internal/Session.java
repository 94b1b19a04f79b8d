// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Failures.NativeCall;
import java.util.concurrent.locks.Lock;

/**
 * What a device object has with its family from opening to closing: calls reach the native library in between and not
 * outside. All methods may be called on any thread.
 */
public final class Session {
    private final Family family;

    /** Guarded by the family's lock. */
    private boolean open = true;

    Session(Family family) {
        this.family = family;
    }

    /**
     * Makes a native call that may overlap with others of its kind.
     *
     * @param call the call, which must not change anything
     * @param <T>  what it returns
     * @return what it returned
     * @throws QuarlinException 2 when the session is closed; what the call threw
     */
    public <T> T ask(NativeCall<T> call) {
        return make(family.lock().readLock(), call);
    }

    /**
     * Makes a native call that waits for those in progress and keeps others waiting.
     *
     * @param call the call
     * @param <T>  what it returns
     * @return what it returned
     * @throws QuarlinException 2 when the session is closed; what the call threw
     */
    public <T> T change(NativeCall<T> call) {
        return make(family.lock().writeLock(), call);
    }

    private <T> T make(Lock lock, NativeCall<T> call) {
        lock.lock();
        try {
            if (!open) {
                throw new QuarlinException(ResultCode.INVALID_STATE, "The " + family.name() + " is closed.");
            }
            return Failures.translate(call);
        } finally {
            lock.unlock();
        }
    }

    /**
     * Closes the session after the calls in progress. Every step is taken, also after one that failed. Does nothing
     * when it is closed already.
     *
     * @param steps what ends the family natively, and what else is to be given up, in this order
     * @throws QuarlinException what the first step that failed threw, with what later steps threw as suppressed
     */
    public void close(NativeCall<?>... steps) {
        Lock alone = family.lock().writeLock();
        alone.lock();
        try {
            if (open) {
                open = false;
                family.leave();
                takeAll(steps);
            }
        } finally {
            alone.unlock();
        }
    }

    private static void takeAll(NativeCall<?>[] steps) {
        Throwable first = null;
        for (NativeCall<?> step : steps) {
            try {
                Failures.translate(step);
            } catch (RuntimeException | Error failure) {
                if (first == null) {
                    first = failure;
                } else {
                    first.addSuppressed(failure);
                }
            }
        }
        if (first instanceof Error) {
            throw (Error) first;
        }
        if (first != null) {
            throw (RuntimeException) first;
        }
    }
}
