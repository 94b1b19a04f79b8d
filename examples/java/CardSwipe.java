// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.msr.CardReader;
import com.norvane.quarlin.msr.MagStripeData;
import com.norvane.quarlin.msr.MagStripeReader;
import com.norvane.quarlin.msr.MagStripeTrackData;
import java.util.List;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;

/** Waits for cards and prints what the reader's masked tracks show of them. */
public final class CardSwipe {
    private static final int PATIENCE_SECONDS = 60;

    private CardSwipe() {
    }

    /**
     * Usage: {@code CardSwipe [COUNT]}, COUNT swipes, or 1. Exit status: 0 when that many came, 1 after an error, 3
     * without a reader or a card.
     *
     * @param arguments see above
     * @throws InterruptedException never
     */
    public static void main(String[] arguments) throws InterruptedException {
        int count = arguments.length == 0 ? 1 : Integer.parseInt(arguments[0]);
        System.exit(read(count));
    }

    private static int read(int count) throws InterruptedException {
        try (CardReader cards = CardReader.open()) {
            List<MagStripeReader> readers = cards.readers();
            if (readers.isEmpty()) {
                System.err.println("There is no card reader.");
                return 3;
            }
            cards.select(readers.get(0));
            // The listener runs on a thread of the library. Here it hands the swipes over to this one.
            BlockingQueue<MagStripeData> swipes = new LinkedBlockingQueue<>();
            cards.addSwipeListener(swipes::add);
            cards.enable();
            System.out.println("Swipe a card through reader " + readers.get(0).getSerialNumber() + ".");
            for (int i = 0; i < count; i++) {
                MagStripeData swipe = next(cards, swipes);
                if (swipe == null) {
                    System.err.println(cards.isEnabled() ? "No card came." : "The reader was unplugged.");
                    return 3;
                }
                print(swipe);
            }
            return 0;
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            return 1;
        }
    }

    /** Null when none comes. Nobody tells that a reader has been unplugged: this asks. */
    private static MagStripeData next(CardReader cards, BlockingQueue<MagStripeData> swipes)
            throws InterruptedException {
        MagStripeData swipe = null;
        for (int seconds = 0; swipe == null && seconds < PATIENCE_SECONDS && cards.isEnabled(); seconds++) {
            swipe = swipes.poll(1, TimeUnit.SECONDS);
        }
        return swipe;
    }

    private static void print(MagStripeData swipe) {
        System.out.println("Card: " + (swipe.isValid() ? "read well" : "not read well, swipe again") + ", "
                + (swipe.isEncrypted() ? "encrypted" : "not encrypted"));
        int number = 1;
        for (MagStripeTrackData track : swipe.getMaskedTracks()) {
            // A reader that is told to masks nothing: whoever watches sees no more than the length then.
            String text = swipe.isEncrypted() ? track.getText() : track.getLength() + " characters";
            System.out.println("  Track " + number++ + ": " + text);
        }
    }
}
