// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

/** A swiped card. Immutable. */
public final class MagStripeData {
    private final MagStripeTrackData[] tracks;
    private final MagStripeTrackData[] maskedTracks;
    private final byte[] raw;
    private final boolean encrypted;
    private final boolean valid;

    /**
     * Made by the native library.
     *
     * @param tracks       tracks 1, 2 and 3; copied
     * @param maskedTracks the same with most digits masked; copied
     * @param raw          the reader's whole report; copied
     * @param isEncrypted  whether the reader has encrypted the tracks
     * @param isValid      whether all tracks were decoded
     */
    public MagStripeData(MagStripeTrackData[] tracks, MagStripeTrackData[] maskedTracks, byte[] raw,
            boolean isEncrypted, boolean isValid) {
        this.tracks = tracks.clone();
        this.maskedTracks = maskedTracks.clone();
        this.raw = raw.clone();
        this.encrypted = isEncrypted;
        this.valid = isValid;
    }

    /**
     * The tracks; encrypted when {@link #isEncrypted()}.
     *
     * @return a copy of the array: tracks 1, 2 and 3
     */
    public MagStripeTrackData[] getTracks() {
        return tracks.clone();
    }

    /**
     * The tracks with most digits masked by the reader.
     *
     * @return a copy of the array: tracks 1, 2 and 3
     */
    public MagStripeTrackData[] getMaskedTracks() {
        return maskedTracks.clone();
    }

    /**
     * The reader's whole report.
     *
     * @return a copy, beginning with the report ID 0
     */
    public byte[] getRaw() {
        return raw.clone();
    }

    /**
     * Whether the reader has encrypted the tracks.
     *
     * @return whether it has
     */
    public boolean isEncrypted() {
        return encrypted;
    }

    /**
     * Whether all tracks were decoded, some track and some masked track hold something, and neither track 1 nor track 2
     * is the reader's text for an error. A swipe of which that is not true is delivered all the same.
     *
     * @return whether it is
     */
    public boolean isValid() {
        return valid;
    }

    /**
     * For people, without the card's data: none of it belongs into a log.
     *
     * @return such as {@code "valid swipe, encrypted"}
     */
    @Override
    public String toString() {
        return (valid ? "valid" : "doubtful") + " swipe, " + (encrypted ? "encrypted" : "clear");
    }
}
