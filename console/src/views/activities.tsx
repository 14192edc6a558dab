// What goes on in the background, with its pace and its end in sight.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { EmptyState, EmptyStateBody } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { useEffect, useRef } from "react";
import { activitiesOfList } from "../model/health.ts";
import { adapterOf, named } from "../model/text.ts";
import { _, fill } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { stopActivity } from "../dialogs/dialogs.tsx";
import { useActing } from "../parts/acting.tsx";
import { Activities } from "../parts/activity.tsx";
import { Listed } from "../parts/failure.tsx";
import { PageLink } from "../parts/links.tsx";
import { actNow, speak } from "../parts/notices.tsx";
import { activityWord } from "../parts/state.tsx";

export function ActivitiesView() {
    const tasks = useList("tasks");
    const acting = useActing();
    const running = useRef(new Map<string, string>());
    // The end of an activity is said; its percents are not.
    useEffect(() => {
        if (tasks.items === null || tasks.failure) return;
        const now = new Map(activitiesOfList(tasks.items).map(task =>
            [`${task.address} ${task.activity}`, fill(_("$0 of $1"), activityWord(task.activity), named(task.address, task.name))]));
        for (const [key, what] of running.current) if (!now.has(key)) speak(fill(_("No longer running: $0"), what));
        running.current = now;
    }, [tasks]);
    return (
        <Listed list={tasks} retry={() => void refresh()}>
            {items => {
                if (items.length === 0) {
                    return (
                        <EmptyState headingLevel="h2" titleText={_("Nothing runs in the background")}>
                            <EmptyStateBody>{_("Rebuilds, checks, initialisations and migrations are shown here while they run.")}</EmptyStateBody>
                        </EmptyState>
                    );
                }
                const adapters = [...new Set(items.map(task => adapterOf(task.address)))].sort();
                return adapters.map(adapter => (
                    <Card key={adapter} component="section">
                        <CardTitle component="h2"><div className="vx-row"><span>{fill(_("Activities of $0"), adapter)}</span>
                            <span className="vx-actions">
                                <PageLink path={["adapters"]}>{_("Rates")}</PageLink>
                                <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Pause all of $0"), adapter)}
                                    onClick={() => void actNow(fill(_("All activities of $0 are paused"), adapter), ["task", "pause-all", adapter])}>
                                    {_("Pause all")}
                                </Button>
                            </span></div></CardTitle>
                        <CardBody><Activities onStop={stopActivity}
                            activities={activitiesOfList(items.filter(task => adapterOf(task.address) === adapter))} /></CardBody>
                    </Card>
                ));
            }}
        </Listed>
    );
}
