// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.internal.Failures.NativeCall;
import java.util.concurrent.locks.Lock;
import java.util.concurrent.locks.ReadWriteLock;
import java.util.concurrent.locks.ReentrantReadWriteLock;

/**
 * A family of native functions. Its state belongs to the process, and so does its lock, which all
 * {@link Session sessions} of the family share.
 *
 * <p>No code of the application runs under the lock.
 */
public final class Family {
    /**
     * The device inventory. It is here because the native library asks it, too, when it looks for the barcode scanner,
     * and takes no lock for it.
     */
    public static final Family DEVICE_INVENTORY = counted("device inventory");

    private final String name;
    private final boolean counted;
    private final ReadWriteLock lock = new ReentrantReadWriteLock();

    /** Sessions that are open; guarded by the lock. */
    private int open;

    private Family(String name, boolean counted) {
        this.name = name;
        this.counted = counted;
    }

    /**
     * Makes a family of which one session at a time is open, because the native library keeps one state of it and the
     * first that closes would end it for all.
     *
     * @param name the device, for messages
     * @return the family
     */
    public static Family single(String name) {
        return new Family(name, false);
    }

    /**
     * Makes a family whose initialisations the native library counts.
     *
     * @param name the device, for messages
     * @return the family
     */
    public static Family counted(String name) {
        return new Family(name, true);
    }

    /**
     * Opens a session.
     *
     * @param initialize initialises the family natively; called when a session may be opened
     * @return the session
     * @throws QuarlinException 2 when there is one that must be closed first; what the initialisation threw
     */
    public Session open(NativeCall<?> initialize) {
        Lock alone = lock.writeLock();
        alone.lock();
        try {
            if (open > 0 && !counted) {
                throw new QuarlinException(ResultCode.INVALID_STATE, "The " + name + " is open already.");
            }
            Failures.translate(initialize);
            ++open;
            return new Session(this);
        } finally {
            alone.unlock();
        }
    }

    /**
     * Makes a native call of another family that uses this one underneath, while no session of this one makes any. May
     * be called within a call of the other family, as long as none of this one does the reverse.
     *
     * @param call the call
     * @param <T>  what it returns
     * @return what it returned
     * @throws QuarlinException what the call threw
     */
    public <T> T alone(NativeCall<T> call) {
        Lock alone = lock.writeLock();
        alone.lock();
        try {
            return Failures.translate(call);
        } finally {
            alone.unlock();
        }
    }

    String name() {
        return name;
    }

    ReadWriteLock lock() {
        return lock;
    }

    /** A session ends; called under the lock. */
    void leave() {
        --open;
    }
}
